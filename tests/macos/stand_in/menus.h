#pragma once

#import <AppKit/AppKit.h>

/// What the stand-in's menu items do: each writes down that it was chosen.
@interface KVStandInMenus : NSObject
/// The menu bar: File > Open Dialog..., Edit > Paste Values (Command-Shift-V), Format > Column > Hide. The
/// items' target is this object, which must outlive it.
- (NSMenu*)menuBar;
- (void)note:(NSMenuItem*)item;
/// Opens a modal dialog, which stays until a key or a click closes it.
- (void)openDialog:(NSMenuItem*)item;
@end
