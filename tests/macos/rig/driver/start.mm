#include "tests/macos/rig/driver/start.h"

#import <Foundation/Foundation.h>

#include "tests/macos/rig/bridge/blocks.h"
#include "tests/macos/rig/driver/commands.h"
#include "tests/macos/rig/driver/main_thread.h"
#include "tests/macos/rig/recorders/dispatch_queues.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/replace.h"

/// The class whose methods blocks get.
@interface KVBlock : NSObject
@end

@implementation KVBlock
- (id)retain {
  return (id)_Block_copy(self);
}
- (id)copy {
  return (id)_Block_copy(self);
}
- (id)copyWithZone:(NSZone*)zone {
  return (id)_Block_copy(self);
}
- (oneway void)release {
  _Block_release(self);
}
@end

namespace keyvora::rig {

void start() {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  abi::fillBlockClasses(reinterpret_cast<abi::Object*>(KVBlock.class));
  beginRecord();
  replaceBundles();
  replaceStrings();
  recordTimers();
  recordApplication();
  beginMainQueue();
  beginMainThread();
  beginCommands();
  [pool release];
}

}  // namespace keyvora::rig
