#import "hosts/macos/status_bar.h"

#include "hosts/macos/menu_rendering.h"
#include "hosts/macos/strings.h"

namespace keyvora::macos {

StatusItem::~StatusItem() { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

bool StatusItem::hasButton() const { return item_.button != nil; }

void StatusItem::setTitle(std::string_view title) {
  @autoreleasepool {
    NSString* text = nsString(title);
    // The state is reported for every key outside the target; setting an equal title would redraw the menu
    // bar.
    if (![item_.button.title isEqualToString:text]) item_.button.title = text;
  }
}

void StatusItem::setMenu(platform::Menu menu) {
  @autoreleasepool {
    item_.menu = render(menu);
  }
}

std::unique_ptr<platform::StatusItem> StatusBar::createItem() {
  @autoreleasepool {
    return std::make_unique<StatusItem>(
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]);
  }
}

}  // namespace keyvora::macos
