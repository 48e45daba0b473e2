#import "platform/macos/keyboard.h"

#import <CoreGraphics/CoreGraphics.h>

#include "platform/macos/cf_ref.h"
#include "platform/macos/event_tap.h"

namespace keyvora::macos {
namespace {

class EventSource final : public platform::EventSource {
 public:
  explicit EventSource(CFRef<CGEventSourceRef> source) : source_(std::move(source)) {}

  void setUserData(std::int64_t userData) override { CGEventSourceSetUserData(source_.get(), userData); }

  [[nodiscard]] CGEventSourceRef get() const { return source_.get(); }

 private:
  CFRef<CGEventSourceRef> source_;
};

class SyntheticEvent final : public platform::SyntheticEvent {
 public:
  explicit SyntheticEvent(CFRef<CGEventRef> event) : event_(std::move(event)) {}

  void setType(std::uint32_t type) override { CGEventSetType(event_.get(), static_cast<CGEventType>(type)); }
  void setFlags(std::uint64_t flags) override { CGEventSetFlags(event_.get(), flags); }
  void postTo(platform::ProcessIdentifier process) override { CGEventPostToPid(process, event_.get()); }
  void postToHardware() override { CGEventPost(kCGHIDEventTap, event_.get()); }

 private:
  CFRef<CGEventRef> event_;
};

}  // namespace

std::unique_ptr<platform::EventTap> Keyboard::createTap(std::uint64_t eventMask,
                                                        platform::TapHandler handler) {
  return EventTap::create(eventMask, std::move(handler));
}

std::unique_ptr<platform::EventSource> Keyboard::createSource() {
  auto source = CFRef<CGEventSourceRef>::adopt(CGEventSourceCreate(kCGEventSourceStatePrivate));
  if (!source) return nullptr;
  return std::make_unique<EventSource>(std::move(source));
}

std::unique_ptr<platform::SyntheticEvent> Keyboard::createEvent(const platform::EventSource* source,
                                                                std::uint16_t keyCode, bool down) {
  // Every source that reaches this host was made by it.
  CGEventSourceRef own = source == nullptr ? nullptr : static_cast<const EventSource*>(source)->get();
  auto event = CFRef<CGEventRef>::adopt(CGEventCreateKeyboardEvent(own, keyCode, down));
  if (!event) return nullptr;
  return std::make_unique<SyntheticEvent>(std::move(event));
}

}  // namespace keyvora::macos
