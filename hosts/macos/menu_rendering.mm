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
  const auto running = _action;  // a copy: the action may replace the menu, which releases this object
  running();
}

@end

namespace keyvora::macos {
namespace {

/// The selector that a row's item sends. The row that ends the application sends `terminate:`, which
/// reaches NSApplication by the responder chain; all others go to the delegate.
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
