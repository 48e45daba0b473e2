#import "hosts/macos/session_watch.h"

#import <AppKit/AppKit.h>

#include "hosts/macos/guarded.h"

/// Hears the notifications, on the main thread: both centers post to it from there.
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
  // AppKit suspends distributed notifications while the application is not active, which an accessory hardly
  // ever is: by default this one would be held back until then.
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
