// Stands in for Excel on a Mac without it: the same bundle identifier, menus, an item that opens a dialog,
// a script dictionary, and a record of every key event that arrives. It has no workbook.

#import <AppKit/AppKit.h>

#import "event_recorder.h"
#import "menus.h"

#include "record.h"

namespace {

/// A window that accepts keys silently, so that they do not cause beeps.
NSWindow* makeWindow() {
  NSWindow* window =
      [[NSWindow alloc] initWithContentRect:NSMakeRect(200, 300, 480, 240)
                                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskResizable
                                    backing:NSBackingStoreBuffered
                                      defer:NO];
  window.releasedWhenClosed = NO;
  window.title = @"Stand-in for Excel";
  NSTextView* cell = [[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, 480, 240)];
  window.contentView = cell;
  [window makeFirstResponder:cell];
  return window;
}

}  // namespace

int main() {
  @autoreleasepool {
    NSApplication* application = [KVStandInApplication sharedApplication];
    [application setActivationPolicy:NSApplicationActivationPolicyRegular];
    KVStandInMenus* menus = [[KVStandInMenus alloc] init];
    application.mainMenu = [menus menuBar];
    NSWindow* window = makeWindow();
    [window makeKeyAndOrderFront:nil];
    [application activateIgnoringOtherApps:YES];
    keyvora::stand_in::record().line("ready");
    [application run];
    static_cast<void>(menus);
    static_cast<void>(window);
  }
  return 0;
}
