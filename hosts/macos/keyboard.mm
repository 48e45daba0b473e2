#import "hosts/macos/keyboard.h"

#include "hosts/macos/event_tap.h"
#include "hosts/macos/synthetic_event.h"

namespace keyvora::macos {

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
  // Every source passed to this host was made by it.
  CGEventSourceRef own = source == nullptr ? nullptr : static_cast<const EventSource*>(source)->get();
  auto event = CFRef<CGEventRef>::adopt(CGEventCreateKeyboardEvent(own, keyCode, down));
  if (!event) return nullptr;
  return std::make_unique<SyntheticEvent>(std::move(event));
}

}  // namespace keyvora::macos
