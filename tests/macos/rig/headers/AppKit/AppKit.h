// GNUstep's AppKit, with additional declarations of Apple's; the recorders implement them.
#pragma once

#import <Foundation/Foundation.h>

#include_next <AppKit/AppKit.h>

// Macros, because newer versions of GNUstep define the enumerators.
#define NSEventModifierFlagCommand NSCommandKeyMask
#define NSEventModifierFlagShift NSShiftKeyMask

@interface NSApplication (Apple)
@property(retain) id delegate;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activate;
@end

@interface NSMenuItem (Apple)
@property(readonly, getter=isSeparatorItem) BOOL separatorItem;
@property(getter=isEnabled) BOOL enabled;
@end

@interface NSStatusItem (Apple)
@property(readonly) NSStatusBarButton* button;
@end

@interface NSRunningApplication (Apple)
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier;
@end

@interface NSWorkspace (Apple)
@property(readonly) NSRunningApplication* frontmostApplication;
@end
