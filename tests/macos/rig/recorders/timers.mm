// Timers: GNUstep takes the common modes for one mode of that name.

#import <AppKit/AppKit.h>

#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/replace.h"
#include "tests/macos/rig/recorders/run_loop.h"

namespace keyvora::rig {
namespace {

IMP addTimer;
IMP scheduledTimer;

void note(double interval, bool repeats, const char* mode) {
  record("timer of %g s, %s, %s", interval, repeats ? "repeating" : "once", mode);
}

}  // namespace

void recordTimers() {
  addTimer = replace(NSRunLoop.class, @selector(addTimer:forMode:),
                     [](id self, SEL selector, NSTimer* timer, NSString* mode) {
                       const auto add = reinterpret_cast<void (*)(id, SEL, NSTimer*, NSString*)>(addTimer);
                       if (![mode isEqualToString:NSRunLoopCommonModes])
                         return add(self, selector, timer, mode);
                       requireMainThread("a timer in the common modes");
                       note(timer.timeInterval, timer.timeInterval > 0, "common modes");
                       for (NSString* each in commonModes()) add(self, selector, timer, each);
                     });
  scheduledTimer = replaceClassMethod(
      NSTimer.class, @selector(scheduledTimerWithTimeInterval:repeats:block:),
      [](id self, SEL selector, NSTimeInterval interval, BOOL repeats, void (^block)(NSTimer*)) -> id {
        requireMainThread("scheduledTimerWithTimeInterval:repeats:block:");
        note(interval, repeats, "default mode");
        using Function = id (*)(id, SEL, NSTimeInterval, BOOL, void (^)(NSTimer*));
        return reinterpret_cast<Function>(scheduledTimer)(self, selector, interval, repeats, block);
      });
}

}  // namespace keyvora::rig
