#import "hosts/macos/menu_rendering.h"

#include <gtest/gtest.h>
#import <objc/runtime.h>

#include "hosts/macos/application.h"

namespace keyvora::macos {
namespace {

platform::MenuRow row(std::string title, char key, std::function<void()> action, bool checked = false) {
  platform::MenuRow made;
  made.title = std::move(title);
  made.keyEquivalent = key;
  made.action = std::move(action);
  made.checked = checked;
  return made;
}

class MenuRendering : public testing::Test {
 protected:
  MenuRendering() {
    application_.setDelegate([] {});
    platform::Menu menu;
    menu.rows.push_back(row("12 sequences, ready", 0, nullptr));
    menu.rows.push_back(platform::MenuRow::separator());
    menu.rows.push_back(row("Edit mappings.json", 'e', [this] { ++chosen_; }));
    menu.rows.push_back(row(
        "Check for Updates…", 0, [this] { chosen_ += 10; }, true));
    auto quit = row("Quit keyvora", 'q', [this] { chosen_ += 100; });
    quit.endsApplication = true;
    menu.rows.push_back(std::move(quit));
    menu_ = render(menu);
    [menu_ update];
  }

  Application application_;
  NSMenu* menu_;
  int chosen_ = 0;
};

TEST_F(MenuRendering, KeepsTheOrderAndTheTitles) {
  ASSERT_EQ(menu_.numberOfItems, 5);
  EXPECT_TRUE([[menu_ itemAtIndex:0].title isEqualToString:@"12 sequences, ready"]);
  EXPECT_TRUE([menu_ itemAtIndex:1].separatorItem);
  EXPECT_TRUE([[menu_ itemAtIndex:3].title isEqualToString:@"Check for Updates\u2026"]);
}

TEST_F(MenuRendering, ARowWithoutAnActionIsDisabled) {
  EXPECT_FALSE([menu_ itemAtIndex:0].enabled);
  EXPECT_TRUE([menu_ itemAtIndex:2].enabled);
}

TEST_F(MenuRendering, KeyLettersGoWithCommand) {
  NSMenuItem* item = [menu_ itemAtIndex:2];
  EXPECT_TRUE([item.keyEquivalent isEqualToString:@"e"]);
  EXPECT_EQ(item.keyEquivalentModifierMask, NSEventModifierFlagCommand);
  EXPECT_TRUE([[menu_ itemAtIndex:3].keyEquivalent isEqualToString:@""]);
}

TEST_F(MenuRendering, TheCheckMarkIsTheItemsState) {
  EXPECT_EQ([menu_ itemAtIndex:2].state, NSControlStateValueOff);
  EXPECT_EQ([menu_ itemAtIndex:3].state, NSControlStateValueOn);
}

TEST_F(MenuRendering, RowsGoToTheApplicationsDelegate) {
  id delegate = NSApplication.sharedApplication.delegate;
  ASSERT_NE(delegate, nil);
  for (NSInteger index : {2, 3}) {
    id target = [menu_ itemAtIndex:index].target;
    EXPECT_EQ(target, delegate);
  }
  id none = [menu_ itemAtIndex:0].target;
  EXPECT_EQ(none, nil);
  EXPECT_EQ([menu_ itemAtIndex:0].action, SEL());
}

TEST_F(MenuRendering, TheRowThatEndsTheApplicationIsTheApplicationsOwnCommand) {
  NSMenuItem* quit = [menu_ itemAtIndex:4];
  EXPECT_EQ(quit.target, nil);
  EXPECT_TRUE(sel_isEqual(quit.action, @selector(terminate:)));
  EXPECT_EQ(quit.representedObject, nil);
  EXPECT_TRUE([quit.keyEquivalent isEqualToString:@"q"]);
}

TEST_F(MenuRendering, AnActionMayReplaceTheMenuThatItIsChosenFrom) {
  platform::Menu menu;
  menu.rows.push_back(row("Launch at Login", 0, [this] {
    menu_ = nil;
    ++chosen_;
  }));
  @autoreleasepool {
    menu_ = render(menu);
    [menu_ performActionForItemAtIndex:0];
  }
  EXPECT_EQ(chosen_, 1);
}

TEST_F(MenuRendering, ChoosingARowRunsItsAction) {
  [menu_ performActionForItemAtIndex:2];
  EXPECT_EQ(chosen_, 1);
  [menu_ performActionForItemAtIndex:3];
  EXPECT_EQ(chosen_, 11);
}

}  // namespace
}  // namespace keyvora::macos
