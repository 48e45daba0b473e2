#import "hosts/macos/menu_rendering.h"

#import "hosts/macos/menu_action.h"
#include "hosts/macos/strings.h"

@implementation KVMenuAction {
 @private
  std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action {
  if ((self = [super init])) _action = std::move(action);
  return self;
}

- (void)run {
  const auto running = _action;  // outlives this object, should the menu be replaced meanwhile
  running();
}

@end

namespace keyvora::macos {
namespace {

/// What the item of a row sends when it is chosen: to the application's delegate, but for the command that
/// every application has, which finds the application by itself.
SEL selectorOf(const platform::MenuRow& row) {
  if (!row.isEnabled()) return nil;
  return row.endsApplication ? @selector(terminate:) : @selector(choose:);
}

NSMenuItem* itemOf(const platform::MenuRow& row) {
  if (row.isSeparator) return [NSMenuItem separatorItem];
  NSString* key = row.keyEquivalent == 0 ? @"" : nsString(std::string_view(&row.keyEquivalent, 1));
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:nsString(row.title)
                                                action:selectorOf(row)
                                         keyEquivalent:key];
  if (row.isEnabled() && !row.endsApplication) {
    item.target = NSApplication.sharedApplication.delegate;
    item.representedObject = [[KVMenuAction alloc] initWithAction:row.action];
  }
  item.state = row.checked ? NSControlStateValueOn : NSControlStateValueOff;
  return item;
}

}  // namespace

NSMenu* render(const platform::Menu& menu) {
  NSMenu* rendered = [[NSMenu alloc] init];
  for (const auto& row : menu.rows) [rendered addItem:itemOf(row)];
  return rendered;
}

}  // namespace keyvora::macos
