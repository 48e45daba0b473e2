#import "hosts/macos/status_bar.h"

#include <gtest/gtest.h>

namespace keyvora::macos {
namespace {

/// An item in the menu bar, and the system's status bar.
class StatusBarTest : public testing::Test {
 protected:
  StatusBarTest() {
    [NSApplication sharedApplication];
    item_ = StatusBar().createItem();
  }

  [[nodiscard]] NSStatusItem* system() const { return static_cast<const StatusItem&>(*item_).get(); }

  std::unique_ptr<platform::StatusItem> item_;
};

TEST_F(StatusBarTest, TheItemHasAButtonWithoutATitle) {
  EXPECT_TRUE(item_->hasButton());
  EXPECT_TRUE([system().button.title isEqualToString:@""]);
}

TEST_F(StatusBarTest, TheTitleIsTheButtons) {
  item_->setTitle("⌥ HF");
  EXPECT_TRUE([system().button.title isEqualToString:@"\u2325 HF"]);
  item_->setTitle("⌥");
  EXPECT_TRUE([system().button.title isEqualToString:@"\u2325"]);
}

TEST_F(StatusBarTest, TheMenuIsReplacedAsAWhole) {
  platform::Menu menu;
  menu.rows.resize(2);
  menu.rows[0].title = "one";
  menu.rows[1].title = "two";
  item_->setMenu(menu);
  NSMenu* first = system().menu;
  ASSERT_EQ(first.numberOfItems, 2);
  EXPECT_TRUE([[first itemAtIndex:1].title isEqualToString:@"two"]);
  menu.rows.resize(1);
  item_->setMenu(menu);
  EXPECT_EQ(system().menu.numberOfItems, 1);
  EXPECT_EQ(first.numberOfItems, 2);
}

// The recorders report an item that is destroyed while the menu bar shows it.
TEST_F(StatusBarTest, AnItemThatEndsIsOutOfTheBarAndAnotherTakesItsPlace) {
  @autoreleasepool {
    item_.reset();
  }
  item_ = StatusBar().createItem();
  item_->setTitle("⌥");
  EXPECT_TRUE([system().button.title isEqualToString:@"\u2325"]);
}

}  // namespace
}  // namespace keyvora::macos
