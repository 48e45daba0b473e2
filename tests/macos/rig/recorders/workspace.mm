// The running applications, the one in front, and what is opened.

#import <AppKit/AppKit.h>

#include <algorithm>

#include "tests/macos/rig/recorders/desktop.h"
#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

@interface KVRunningApplication : NSRunningApplication {
  pid_t _process;
  NSString* _identifier;
}
@end

@implementation KVRunningApplication
- (instancetype)initWithApplication:(const keyvora::rig::RunningApplication&)application {
  if ((self = [super init])) {
    _process = application.process;
    if (application.identifier) {
      _identifier = [[NSString alloc] initWithUTF8String:application.identifier->c_str()];
    }
    keyvora::rig::count("running application", 1);
  }
  return self;
}
- (void)dealloc {
  keyvora::rig::count("running application", -1);
  [_identifier release];
  [super dealloc];
}
- (pid_t)processIdentifier {
  return _process;
}
- (NSString*)bundleIdentifier {
  return _identifier;
}
@end

namespace keyvora::rig {

Desktop& Desktop::shared() {
  static auto& desktop = *new Desktop;
  return desktop;
}

}  // namespace keyvora::rig

using keyvora::rig::Desktop;

@implementation NSRunningApplication (KVRecorder)
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
  NSMutableArray* found = [NSMutableArray array];
  if (keyvora::rig::fails("runningApplicationsWithBundleIdentifier:")) return found;
  for (const auto& application : Desktop::shared().running) {
    if (application.identifier != std::string(identifier.UTF8String)) continue;
    [found addObject:[[[KVRunningApplication alloc] initWithApplication:application] autorelease]];
  }
  return found;
}
@end

@implementation NSWorkspace (KVRecorder)
- (NSRunningApplication*)frontmostApplication {
  const auto& desktop = Desktop::shared();
  if (!desktop.front) return nil;
  const auto found =
      std::ranges::find(desktop.running, *desktop.front, &keyvora::rig::RunningApplication::process);
  if (found == desktop.running.end()) return nil;
  return [[[KVRunningApplication alloc] initWithApplication:*found] autorelease];
}

// GNUstep's own needs a daemon.
- (NSNotificationCenter*)notificationCenter {
  static NSNotificationCenter* center = [[NSNotificationCenter alloc] init];
  return center;
}

- (BOOL)openURL:(NSURL*)url {
  keyvora::rig::requireMainThread("openURL:");
  keyvora::rig::record("openURL: %s", url.absoluteString.UTF8String);
  return YES;
}
@end
