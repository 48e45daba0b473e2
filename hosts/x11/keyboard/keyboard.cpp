#include "hosts/x11/keyboard/keyboard.h"

#include <utility>

#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/event_tap.h"
#include "hosts/x11/keyboard/poster.h"
#include "hosts/x11/keyboard/synthetic_event.h"
#include "hosts/x11/tap/tap_thread.h"

namespace keyvora::x11 {

Keyboard::Keyboard(std::string displayName, CurrentTap& currentTap)
    : displayName_(std::move(displayName)), currentTap_(currentTap) {}

Keyboard::~Keyboard() = default;

std::unique_ptr<platform::EventTap> Keyboard::createTap(std::uint64_t eventMask,
                                                        platform::TapHandler handler) {
  auto thread = TapThread::start(displayName_);
  if (!thread) return nullptr;
  currentTap_.set(thread);
  return std::make_unique<EventTap>(std::move(thread), eventMask, std::move(handler));
}

std::unique_ptr<platform::EventSource> Keyboard::createSource() {
  if (!poster()) return nullptr;
  return std::make_unique<EventSource>();
}

std::unique_ptr<platform::SyntheticEvent> Keyboard::createEvent(const platform::EventSource* source,
                                                                std::uint16_t keyCode, bool down) {
  auto posting = poster();
  if (!posting || !posting->hasKey(keyCode)) return nullptr;
  const auto* ours = dynamic_cast<const EventSource*>(source);
  const KeyStroke stroke{
      .keyCode = keyCode, .down = down, .userData = ours == nullptr ? 0 : ours->userData()};
  return std::make_unique<SyntheticEvent>(std::move(posting), currentTap_, stroke);
}

std::shared_ptr<Poster> Keyboard::poster() {
  const std::scoped_lock lock(posterMutex_);
  if (!poster_) poster_ = Poster::open(displayName_);
  return poster_;
}

}  // namespace keyvora::x11
