#pragma once

#import <AppKit/AppKit.h>

/// The application of the stand-in: writes down every key event that reaches it, before anything else sees
/// it.
@interface KVStandInApplication : NSApplication
@end
