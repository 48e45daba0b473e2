#import "hosts/macos/menu_rendering.h"

#include "hosts/macos/guarded.h"
#include "hosts/macos/strings.h"

/// Target of one menu item: an item holds its target weakly, so it also carries it as its represented object.
@interface KVMenuTarget : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)choose:(id)sender;
@end

@implementation KVMenuTarget {
 @private
  std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action {
  if ((self = [super init])) _action = std::move(action);
  return self;
}

- (void)choose:(id)sender {
  keyvora::macos::guarded([self] {
    // The action may replace the menu, and with it this target.
    const auto running = self->_action;
    running();
  });
}

@end

namespace keyvora::macos {
namespace {

NSMenuItem* itemOf(const platform::MenuRow& row) {
  if (row.isSeparator) return [NSMenuItem separatorItem];
  NSString* key = row.keyEquivalent == 0 ? @"" : nsString(std::string_view(&row.keyEquivalent, 1));
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:nsString(row.title)
                                                action:row.isEnabled() ? @selector(choose:) : nil
                                         keyEquivalent:key];
  if (row.isEnabled()) {
    KVMenuTarget* target = [[KVMenuTarget alloc] initWithAction:row.action];
    item.target = target;
    item.representedObject = target;
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
