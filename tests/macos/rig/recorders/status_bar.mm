// The status bar, which GNUstep does not implement. It does not retain items: the caller must.

#import <AppKit/AppKit.h>

#include <string>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/status_item.h"

using keyvora::rig::count;
using keyvora::rig::inQuotes;
using keyvora::rig::record;
using keyvora::rig::requireMainThread;
using keyvora::rig::violation;

@interface KVStatusButton : NSStatusBarButton
@end

@implementation KVStatusButton
- (void)setTitle:(NSString*)title {
  requireMainThread("a status item's title");
  record("title %s", inQuotes(title.UTF8String).c_str());
  [super setTitle:title];
}
- (NSString*)title {
  requireMainThread("a status item's title");
  return [super title];
}
@end

static KVStatusItem* current;  // not retained

@implementation KVStatusItem
+ (KVStatusItem*)current {
  return current;
}
- (instancetype)initWithLength:(CGFloat)length {
  if ((self = [super init])) {
    record("status item of length %g", length);
    count("status item", 1);
    if (!keyvora::rig::fails("button")) {
      _itsButton = [[KVStatusButton alloc] initWithFrame:NSMakeRect(0, 0, 24, 24)];
      [_itsButton setCell:[[[NSButtonCell alloc] initTextCell:@""] autorelease]];
    }
    _inBar = YES;
    current = self;
  }
  return self;
}
- (void)dealloc {
  if (_inBar) violation("a status item ended while in the bar");
  if (current == self) current = nil;
  count("status item", -1);
  [_itsButton release];
  [_itsMenu release];
  [super dealloc];
}
- (NSStatusBarButton*)button {
  requireMainThread("a status item's button");
  return _itsButton;
}
- (NSMenu*)menu {
  return _itsMenu;
}
- (void)setMenu:(NSMenu*)menu {
  requireMainThread("a status item's menu");
  record("menu of %ld rows", (long)menu.numberOfItems);
  if (menu == _itsMenu) return;
  [_itsMenu release];
  _itsMenu = [menu retain];
}
- (void)leaveBar {
  if (!_inBar) violation("a status item removed twice");
  _inBar = NO;
}
@end

@implementation NSStatusBar (KVRecorder)
+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* bar = [[NSStatusBar alloc] init];
  return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  requireMainThread("statusItemWithLength:");
  return [[[KVStatusItem alloc] initWithLength:length] autorelease];
}
- (void)removeStatusItem:(NSStatusItem*)item {
  requireMainThread("removeStatusItem:");
  record("removeStatusItem:");
  [(KVStatusItem*)item leaveBar];
}
@end
