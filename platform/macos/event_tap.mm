#import "platform/macos/event_tap.h"

#import <AppKit/AppKit.h>

#include "platform/fatal.h"
#include "platform/macos/guarded.h"

namespace keyvora::macos {

std::unique_ptr<EventTap> EventTap::create(std::uint64_t eventMask, platform::TapHandler handler) {
  std::unique_ptr<EventTap> tap(new EventTap(std::move(handler)));
  tap->port_ = CFRef<CFMachPortRef>::adopt(CGEventTapCreate(
      kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, eventMask, callback, tap.get()));
  if (!tap->port_) return nullptr;
  tap->source_ = CFRef<CFRunLoopSourceRef>::adopt(
      CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port_.get(), 0));
  CFRunLoopAddSource(CFRunLoopGetMain(), tap->source_.get(), kCFRunLoopCommonModes);
  tap->watchForSilentDisabling();
  return tap;
}

EventTap::EventTap(platform::TapHandler handler)
    : handler_(std::move(handler)), workspaceObservers_([NSMutableArray array]) {}

EventTap::~EventTap() {
  for (id<NSObject> observer in workspaceObservers_) {
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
  }
  if (unlockObserver_ != nil) [NSDistributedNotificationCenter.defaultCenter removeObserver:unlockObserver_];
  if (!port_) return;
  CGEventTapEnable(port_.get(), false);
  CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
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

void EventTap::watchForSilentDisabling() {
  // The observers end with this object, on the main thread, where they also run: the pointer cannot dangle.
  const EventTap* tap = this;
  void (^check)(NSNotification*) = ^(NSNotification*) {
    guarded([tap] { tap->reportIfDisabled(); });
  };
  NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
  for (NSNotificationName name in
       @[ NSWorkspaceDidWakeNotification, NSWorkspaceSessionDidBecomeActiveNotification ]) {
    [workspaceObservers_ addObject:[center addObserverForName:name
                                                       object:nil
                                                        queue:NSOperationQueue.mainQueue
                                                   usingBlock:check]];
  }
  unlockObserver_ =
      [NSDistributedNotificationCenter.defaultCenter addObserverForName:@"com.apple.screenIsUnlocked"
                                                                 object:nil
                                                                  queue:NSOperationQueue.mainQueue
                                                             usingBlock:check];
}

void EventTap::reportIfDisabled() const {
  if (CGEventTapIsEnabled(port_.get())) return;
  platform::KeyEvent notice;
  notice.type = platform::event_type::tapDisabledByTimeout;
  handler_(notice);
}

}  // namespace keyvora::macos
