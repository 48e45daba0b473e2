#import "hosts/macos/event_tap.h"

#include "hosts/macos/guarded.h"
#include "platform/fatal.h"

namespace keyvora::macos {

platform::KeyEvent keyEventOf(CGEventType type, CGEventRef event) {
  platform::KeyEvent record;
  record.type = static_cast<std::uint32_t>(type);
  const bool isNotice = record.type >= platform::event_type::tapDisabledByTimeout;
  if (isNotice || event == nullptr) return record;
  record.keyCode = static_cast<std::uint16_t>(CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode));
  record.flags = CGEventGetFlags(event);
  record.userData = CGEventGetIntegerValueField(event, kCGEventSourceUserData);
  return record;
}

std::unique_ptr<TapPort> TapPort::create(std::uint64_t eventMask, CGEventTapCallBack callback,
                                         void* userInfo) {
  auto made = CFRef<CFMachPortRef>::adopt(CGEventTapCreate(
      kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, eventMask, callback, userInfo));
  if (!made) return nullptr;
  std::unique_ptr<TapPort> port(new TapPort(std::move(made)));
  port->source_ = CFRef<CFRunLoopSourceRef>::adopt(
      CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port->port_.get(), 0));
  if (!port->source_) return nullptr;
  CFRunLoopAddSource(CFRunLoopGetMain(), port->source_.get(), kCFRunLoopCommonModes);
  return port;
}

TapPort::~TapPort() {
  CGEventTapEnable(port_.get(), false);
  if (source_) CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
  CFMachPortInvalidate(port_.get());
}

bool TapPort::isAlive() const { return CFMachPortIsValid(port_.get()); }

bool TapPort::isEnabled() const { return CGEventTapIsEnabled(port_.get()); }

void TapPort::enable() { CGEventTapEnable(port_.get(), true); }

std::unique_ptr<EventTap> EventTap::create(std::uint64_t eventMask, platform::TapHandler handler) {
  std::unique_ptr<EventTap> tap(new EventTap(eventMask, std::move(handler)));
  if (!tap->makePort()) return nullptr;
  tap->sessionWatch_.emplace([owner = tap.get()] { owner->reportIfDisabled(); });
  tap->activity_ =
      [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                   reason:@"Deciding on every key that is pressed"];
  return tap;
}

EventTap::~EventTap() {
  if (activity_ != nil) [NSProcessInfo.processInfo endActivity:activity_];
}

void EventTap::enable() {
  if (!port_->isAlive() && !makePort()) return;
  port_->enable();
}

bool EventTap::makePort() {
  auto port = TapPort::create(eventMask_, callback, this);
  if (!port) return false;
  port_ = std::move(port);
  return true;
}

CGEventRef EventTap::callback(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* userInfo) {
  if (userInfo == nullptr) platform::fatal("an event tap was called without its owner");
  const auto* tap = static_cast<const EventTap*>(userInfo);
  const auto held = CFRef<CGEventRef>::retain(event);
  const auto verdict =
      guarded(platform::Verdict::pass, [tap, type, event] { return tap->handler_(keyEventOf(type, event)); });
  return verdict == platform::Verdict::pass ? event : nullptr;
}

void EventTap::reportIfDisabled() const {
  if (port_->isAlive() && port_->isEnabled()) return;
  platform::KeyEvent notice;
  notice.type = platform::event_type::tapDisabledByTimeout;
  handler_(notice);
}

}  // namespace keyvora::macos
