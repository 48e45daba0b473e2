// Timers: GNUstep takes the common modes for one mode of that name, and has no `valid` but the method.

#import <AppKit/AppKit.h>

#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/replace.h"
#include "tests/macos/rig/recorders/run_loop.h"

namespace keyvora::rig {
namespace {
IMP addTimer;
}

void recordTimers() {
  addTimer = replace(NSRunLoop.class, @selector(addTimer:forMode:),
                     [](id self, SEL selector, NSTimer* timer, NSString* mode) {
                       const auto add = reinterpret_cast<void (*)(id, SEL, NSTimer*, NSString*)>(addTimer);
                       if (![mode isEqualToString:NSRunLoopCommonModes])
                         return add(self, selector, timer, mode);
                       for (NSString* each in commonModes()) add(self, selector, timer, each);
                     });
}

}  // namespace keyvora::rig
