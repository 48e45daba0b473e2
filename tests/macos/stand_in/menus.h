#pragma once

#import <AppKit/AppKit.h>

/// The actions of the stand-in's menu items, which record that they were chosen.
@interface KVStandInMenus : NSObject
/// The menu bar: File > Open Dialog..., Edit > Paste Values (Command-Shift-V), Format > Column > Hide. The
/// items' target is this object, which must outlive them.
- (NSMenu*)menuBar;
- (void)note:(NSMenuItem*)item;
/// Opens a modal dialog, which a key or a click closes.
- (void)openDialog:(NSMenuItem*)item;
@end
