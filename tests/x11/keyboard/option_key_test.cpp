#include <gtest/gtest.h>

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

#include <tuple>

#include "hosts/x11/display.h"
#include "tests/x11/keyboard/event_tap_fixture.h"

namespace keyvora::x11 {
namespace {

class OptionKeyTest : public EventTapTest {
 protected:
  /// Sets this option of the keyboard settings, and no other.
  void choose(const std::string& option) const {
    Child command({"setxkbmap", "-display", display.name(), "-option", "", "-option", option}, {});
    ASSERT_EQ(command.wait(), 0);
  }
};

TEST_F(OptionKeyTest, AKeyThatIsNotOptionByWhatItDoesDoesNotArm) {
  tapWithCatcher();
  for (const auto& [layout, choice] : std::initializer_list<std::pair<const char*, const char*>>{
           {"de", ""}, {"us", "compose:ralt"}, {"us,de", "grp:toggle"}}) {
    display.setLayout(layout);
    choose(choice);
    user.tap({key::rightOption});
    ASSERT_TRUE(awaitTap());
    settle();
    EXPECT_EQ(catcher.armings, 0) << layout << choice;
  }
}

TEST_F(OptionKeyTest, WhateverKeyMakesAltIsOption) {
  tapWithCatcher();
  int armings = 0;
  for (const auto& [choice, option, other] :
       std::initializer_list<std::tuple<const char*, std::uint16_t, std::uint16_t>>{
           {"altwin:swap_alt_win", key::leftControl, key::leftOption},
           {"ctrl:swap_lalt_lctl", key::leftCommand, key::leftOption}}) {
    choose(choice);
    user.tap({other});
    ASSERT_TRUE(awaitTap());
    settle();
    EXPECT_EQ(catcher.armings, armings) << choice;
    user.tap({option, key::h, key::f});
    ++armings;
    EXPECT_TRUE(runUntil([&] { return catcher.armings == armings && !catcher.armed; })) << choice;
  }
}

TEST_F(OptionKeyTest, AChangeOfLayoutByOptionAndShiftDoesNotArm) {
  display.setLayout("us,de");
  choose("grp:alt_shift_toggle");
  tapWithCatcher();
  const auto shift = key::leftShift;
  const auto option = key::leftOption;
  for (const auto& [first, second] :
       std::initializer_list<std::pair<std::uint16_t, std::uint16_t>>{{shift, option}, {option, shift}}) {
    for (int times = 0; times < 4; ++times) {
      user.press(first);
      user.press(second);
      user.release(second);
      user.release(first);
      ASSERT_TRUE(awaitTap());
    }
  }
  settle();
  EXPECT_EQ(catcher.armings, 0);
  user.tap({option});
  EXPECT_TRUE(runUntil([&] { return catcher.armings == 1; }));
}

TEST_F(OptionKeyTest, OptionWithAMouseButtonWasNotAlone) {
  tapWithCatcher();
  const auto control = Connection::open(display.name());
  user.press(key::leftOption);
  ASSERT_TRUE(awaitTap());
  XTestFakeButtonEvent(control->get(), 3, True, CurrentTime);
  XTestFakeButtonEvent(control->get(), 3, False, CurrentTime);
  XSync(control->get(), False);
  user.release(key::leftOption);
  ASSERT_TRUE(awaitTap());
  settle();
  EXPECT_EQ(catcher.armings, 0);
  user.tap({key::leftOption});
  EXPECT_TRUE(runUntil([&] { return catcher.armings == 1; }));
}

TEST_F(OptionKeyTest, StickyKeysArmNothing) {
  tapWithCatcher();
  const auto control = Connection::open(display.name());
  XkbChangeEnabledControls(control->get(), XkbUseCoreKbd, XkbStickyKeysMask, XkbStickyKeysMask);
  XSync(control->get(), False);
  ASSERT_TRUE(awaitTap());
  user.tap({key::leftOption});
  ASSERT_TRUE(awaitTap());
  settle();
  EXPECT_EQ(catcher.armings, 0);
  XkbChangeEnabledControls(control->get(), XkbUseCoreKbd, XkbStickyKeysMask, 0);
  XSync(control->get(), False);
  ASSERT_TRUE(awaitTap());
  user.tap({key::a, key::leftOption});
  EXPECT_TRUE(runUntil([&] { return catcher.armings == 1; }));
}

}  // namespace
}  // namespace keyvora::x11
