#import "hosts/macos/status_bar.h"

#import <AppKit/AppKit.h>

#include "hosts/macos/menu_rendering.h"
#include "hosts/macos/strings.h"

namespace keyvora::macos {
namespace {

class StatusItem final : public platform::StatusItem {
 public:
  explicit StatusItem(NSStatusItem* item) : item_(item) {}
  ~StatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  [[nodiscard]] bool hasButton() const override { return item_.button != nil; }

  void setTitle(std::string_view title) override {
    @autoreleasepool {
      NSString* text = nsString(title);
      // Reports repeat for every key outside the target; an equal title must not redraw the menu bar.
      if (![item_.button.title isEqualToString:text]) item_.button.title = text;
    }
  }

  void setMenu(platform::Menu menu) override {
    @autoreleasepool {
      item_.menu = render(menu);
    }
  }

 private:
  NSStatusItem* item_;
};

}  // namespace

std::unique_ptr<platform::StatusItem> StatusBar::createItem() {
  @autoreleasepool {
    return std::make_unique<StatusItem>(
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]);
  }
}

}  // namespace keyvora::macos
