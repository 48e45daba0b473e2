// The center for distributed notifications, for which GNUstep needs a daemon.

#import <Foundation/Foundation.h>

#include "tests/macos/rig/recorders/record.h"

/// A center within the process. As an accessory is hardly ever active, an observer gets notifications only
/// if it requests immediate delivery.
@interface KVDistributedCenter : NSNotificationCenter
@end

@implementation KVDistributedCenter
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSString*)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)behavior {
  keyvora::rig::requireMainThread("an observer of distributed notifications");
  if (name != nil)
    keyvora::rig::record("distributed observer of %s, behaviour %ld", name.UTF8String, (long)behavior);
  if (behavior != NSNotificationSuspensionBehaviorDeliverImmediately) return;
  [super addObserver:observer selector:selector name:name object:object];
}
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object {
  [self addObserver:observer
                selector:selector
                    name:name
                  object:object
      suspensionBehavior:NSNotificationSuspensionBehaviorCoalesce];
}
@end

@implementation NSDistributedNotificationCenter (KVRecorder)
+ (NSDistributedNotificationCenter*)defaultCenter {
  static KVDistributedCenter* center = [[KVDistributedCenter alloc] init];
  return (NSDistributedNotificationCenter*)center;
}
@end
