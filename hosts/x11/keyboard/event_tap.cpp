#include "hosts/x11/keyboard/event_tap.h"

#include <utility>

namespace keyvora::x11 {

using platform::KeyEvent;
using platform::Verdict;

// Ahead of timers and drawing: the user's keyboard waits. The default context is dispatched while a menu of
// ours is open, too.
EventTap::EventTap(std::shared_ptr<TapThread> thread, std::uint64_t eventMask, platform::TapHandler handler)
    : thread_(std::move(thread)),
      eventMask_(eventMask),
      handler_(std::move(handler)),
      source_(thread_->handover().toMain().fileDescriptor(), G_PRIORITY_HIGH, [this] { showEvents(); }) {}

void EventTap::showEvents() {
  auto& handover = thread_->handover();
  handover.toMain().clear();
  while (const auto event = handover.next()) handover.handled(show(*event));
}

Verdict EventTap::show(const KeyEvent& event) {
  const bool isNotice = event.type >= platform::event_type::tapDisabledByTimeout;
  const bool wanted = isNotice || (eventMask_ >> event.type & 1U) != 0;
  return wanted ? handler_(event) : Verdict::pass;
}

}  // namespace keyvora::x11
