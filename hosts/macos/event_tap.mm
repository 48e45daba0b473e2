#import "hosts/macos/event_tap.h"

#include "hosts/macos/guarded.h"
#include "platform/fatal.h"

namespace keyvora::macos {

std::unique_ptr<EventTap> EventTap::create(std::uint64_t eventMask, platform::TapHandler handler) {
  std::unique_ptr<EventTap> tap(new EventTap(std::move(handler)));
  tap->port_ = CFRef<CFMachPortRef>::adopt(CGEventTapCreate(
      kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, eventMask, callback, tap.get()));
  if (!tap->port_) return nullptr;
  tap->source_ = CFRef<CFRunLoopSourceRef>::adopt(
      CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port_.get(), 0));
  if (!tap->source_) return nullptr;
  CFRunLoopAddSource(CFRunLoopGetMain(), tap->source_.get(), kCFRunLoopCommonModes);
  tap->sessionWatch_.emplace([owner = tap.get()] { owner->reportIfDisabled(); });
  tap->activity_ =
      [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                   reason:@"Deciding on every key that is pressed"];
  return tap;
}

EventTap::~EventTap() {
  if (activity_ != nil) [NSProcessInfo.processInfo endActivity:activity_];
  if (!port_) return;
  CGEventTapEnable(port_.get(), false);
  if (source_) CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
  // From here on nothing calls back with the pointer to this object.
  CFMachPortInvalidate(port_.get());
}

void EventTap::enable() { CGEventTapEnable(port_.get(), true); }

CGEventRef EventTap::callback(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* userInfo) {
  if (userInfo == nullptr) platform::fatal("an event tap was called without its owner");
  const auto* tap = static_cast<const EventTap*>(userInfo);
  const auto held = CFRef<CGEventRef>::retain(event);
  const auto verdict =
      guarded(platform::Verdict::pass, [tap, type, event] { return tap->decide(type, event); });
  return verdict == platform::Verdict::pass ? event : nullptr;
}

platform::Verdict EventTap::decide(CGEventType type, CGEventRef event) const {
  platform::KeyEvent record;
  record.type = static_cast<std::uint32_t>(type);
  // A notice that the tap was switched off comes without an event.
  const bool isNotice = record.type >= platform::event_type::tapDisabledByTimeout;
  if (!isNotice && event != nullptr) {
    record.keyCode = static_cast<std::uint16_t>(CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode));
    record.flags = CGEventGetFlags(event);
    record.userData = CGEventGetIntegerValueField(event, kCGEventSourceUserData);
  }
  return handler_(record);
}

void EventTap::reportIfDisabled() const {
  if (CGEventTapIsEnabled(port_.get())) return;
  platform::KeyEvent notice;
  notice.type = platform::event_type::tapDisabledByTimeout;
  handler_(notice);
}

}  // namespace keyvora::macos
