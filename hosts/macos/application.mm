#import "hosts/macos/application.h"

#import <AppKit/AppKit.h>

#include "hosts/macos/guarded.h"

/// Hears that launching has finished; everything else is the core's.
@interface KVApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithDidFinishLaunching:(std::function<void()>)block;
@end

@implementation KVApplicationDelegate {
 @private
  std::function<void()> _didFinishLaunching;
}

- (instancetype)initWithDidFinishLaunching:(std::function<void()>)block {
  if ((self = [super init])) _didFinishLaunching = std::move(block);
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  keyvora::macos::guarded([self] { self->_didFinishLaunching(); });
}

@end

namespace keyvora::macos {

Application::Application() { [NSApplication sharedApplication]; }

void Application::setActivationPolicy(platform::ActivationPolicy policy) {
  @autoreleasepool {
    [NSApplication.sharedApplication
        setActivationPolicy:static_cast<NSApplicationActivationPolicy>(static_cast<NSInteger>(policy))];
  }
}

void Application::activate() {
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    if (@available(macOS 14.0, *)) {
      [application activate];
    } else {
      [application activateIgnoringOtherApps:YES];
    }
  }
}

int Application::run(std::function<void()> didFinishLaunching) {
  NSApplication* application = NSApplication.sharedApplication;
  // The application holds its delegate weakly; this frame lasts as long as its loop.
  NS_VALID_UNTIL_END_OF_SCOPE KVApplicationDelegate* delegate =
      [[KVApplicationDelegate alloc] initWithDidFinishLaunching:std::move(didFinishLaunching)];
  application.delegate = delegate;
  [application run];
  return 0;
}

void Application::terminate() { [NSApplication.sharedApplication terminate:nil]; }

}  // namespace keyvora::macos
