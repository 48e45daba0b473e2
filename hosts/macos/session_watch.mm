#import "hosts/macos/session_watch.h"

#import <AppKit/AppKit.h>

#include "hosts/macos/guarded.h"

/// Receives the notifications, on the main thread: both centers post from there.
@interface KVSessionObserver : NSObject
- (instancetype)initWithBlock:(std::function<void()>)block;
- (void)sessionReturned:(NSNotification*)notification;
@end

@implementation KVSessionObserver {
 @private
  std::function<void()> _returned;
}

- (instancetype)initWithBlock:(std::function<void()>)block {
  if ((self = [super init])) _returned = std::move(block);
  return self;
}

- (void)sessionReturned:(NSNotification*)notification {
  keyvora::macos::guarded([self] { self->_returned(); });
}

@end

namespace keyvora::macos {

SessionWatch::SessionWatch(std::function<void()> returned)
    : observer_([[KVSessionObserver alloc] initWithBlock:std::move(returned)]) {
  NSNotificationCenter* workspace = NSWorkspace.sharedWorkspace.notificationCenter;
  for (NSNotificationName name in
       @[ NSWorkspaceDidWakeNotification, NSWorkspaceSessionDidBecomeActiveNotification ]) {
    [workspace addObserver:observer_ selector:@selector(sessionReturned:) name:name object:nil];
  }
  // By default AppKit delays distributed notifications until the application is active, and an accessory
  // application hardly ever is.
  [NSDistributedNotificationCenter.defaultCenter
             addObserver:observer_
                selector:@selector(sessionReturned:)
                    name:@"com.apple.screenIsUnlocked"
                  object:nil
      suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
}

SessionWatch::~SessionWatch() {
  [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer_];
  [NSDistributedNotificationCenter.defaultCenter removeObserver:observer_];
}

}  // namespace keyvora::macos
