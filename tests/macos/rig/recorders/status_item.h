#pragma once

#import <AppKit/AppKit.h>

/// A status item that notes what is done with it.
@interface KVStatusItem : NSStatusItem {
  NSStatusBarButton* _itsButton;
  NSMenu* _itsMenu;
  BOOL _inBar;
}
/// The last item that was made, while it lives.
+ (KVStatusItem*)current;
@end
