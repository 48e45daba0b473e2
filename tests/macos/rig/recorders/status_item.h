#pragma once

#import <AppKit/AppKit.h>

/// A status item that records calls.
@interface KVStatusItem : NSStatusItem {
  NSStatusBarButton* _itsButton;
  NSMenu* _itsMenu;
  BOOL _inBar;
}
/// The last created item, while it exists.
+ (KVStatusItem*)current;
@end
