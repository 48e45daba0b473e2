// Parts that GNUstep's NSApplication lacks, and a record of calls to it.

#import <AppKit/AppKit.h>

#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/replace.h"

using keyvora::rig::record;
using keyvora::rig::requireMainThread;

@implementation NSApplication (KVRecorder)

- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
  requireMainThread("setActivationPolicy:");
  record("setActivationPolicy: %ld", (long)policy);
  return YES;
}

- (void)activate {
  requireMainThread("activate");
  record("activate");
}

@end

namespace keyvora::rig {

void recordApplication() {
  static IMP setDelegate =
      replace(NSApplication.class, @selector(setDelegate:), [](id self, SEL selector, id delegate) {
        record("setDelegate: %s", delegate == nil ? "none" : object_getClassName(delegate));
        reinterpret_cast<void (*)(id, SEL, id)>(setDelegate)(self, selector, delegate);
      });
  static IMP terminate =
      replace(NSApplication.class, @selector(terminate:), [](id self, SEL selector, id sender) {
        requireMainThread("terminate:");
        record("terminate: %s", sender == nil ? "none" : object_getClassName(sender));
        reinterpret_cast<void (*)(id, SEL, id)>(terminate)(self, selector, sender);
      });
}

}  // namespace keyvora::rig
