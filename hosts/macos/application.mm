#import "hosts/macos/application.h"

#include "hosts/macos/guarded.h"
#import "hosts/macos/menu_action.h"

/// Reports the end of launching and the chosen menu item; the core does the rest.
@interface KVApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithDidFinishLaunching:(std::function<void()>)block;
/// The action of every menu item of keyvora.
- (void)choose:(NSMenuItem*)item;
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

- (void)choose:(NSMenuItem*)item {
  keyvora::macos::guarded([item] {
    id action = item.representedObject;
    if ([action isKindOfClass:KVMenuAction.class]) [static_cast<KVMenuAction*>(action) run];
  });
}

@end

namespace keyvora::macos {

Application::Application() { [NSApplication sharedApplication]; }

Application::~Application() {
  NSApplication* application = NSApplication.sharedApplication;
  if (delegate_ != nil && application.delegate == delegate_) application.delegate = nil;
}

void Application::setDelegate(std::function<void()> didFinishLaunching) {
  @autoreleasepool {
    delegate_ = [[KVApplicationDelegate alloc] initWithDidFinishLaunching:std::move(didFinishLaunching)];
    NSApplication.sharedApplication.delegate = delegate_;
  }
}

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

int Application::run() {
  [NSApplication.sharedApplication run];
  return 0;
}

void Application::terminate() { [NSApplication.sharedApplication terminate:nil]; }

}  // namespace keyvora::macos
