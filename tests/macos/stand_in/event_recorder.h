#pragma once

#import <AppKit/AppKit.h>

/// The stand-in's application object: records every key event that reaches it before handling it.
@interface KVStandInApplication : NSApplication
@end
