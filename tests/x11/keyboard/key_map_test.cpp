#include <gtest/gtest.h>  // ahead of Xlib, whose macros it cannot bear

#include "hosts/x11/keyboard/key_map.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_codes.h"
#include "platform/keyboard.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

using namespace platform::event_flag;

/// Every key that an action can press.
constexpr std::array<std::uint16_t, 63> pressable{
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  11, 12, 13, 14,  15,  16,  17,  18,  19,  20,  21,
    22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35,  36,  37,  38,  39,  40,  41,  42,
    43, 44, 45, 46, 47, 48, 49, 50, 53, 96, 97, 98, 99, 100, 101, 103, 109, 111, 118, 120, 122};

class KeyMapTest : public testing::Test {
 protected:
  PrivateDisplay display;
  std::unique_ptr<Connection> connection = Connection::open(display.name());
  KeyMap keys{connection->get()};

  /// Takes in changes of the keyboard description until the condition holds.
  bool follows(const std::function<bool()>& condition) {
    return runUntil([&] {
      XSync(connection->get(), False);
      while (XPending(connection->get()) > 0) {
        XEvent event;
        XNextEvent(connection->get(), &event);
        keys.notice(event);
      }
      return condition();
    });
  }
};

TEST_F(KeyMapTest, EveryKeyComesBackUnderEveryLayout) {
  for (const auto& [layout, variant] : std::initializer_list<std::pair<const char*, const char*>>{
           {"us", ""}, {"de", ""}, {"fr", ""}, {"us", "dvorak"}}) {
    display.setLayout(layout, variant);
    const KeyMap fresh(connection->get());
    for (const auto keyCode : pressable) {
      const auto keycode = fresh.keycode(keyCode);
      ASSERT_TRUE(keycode) << layout << variant << " has no key " << keyCode;
      EXPECT_EQ(fresh.keyCode(*keycode), keyCode) << layout << variant;
    }
    for (std::uint16_t modifier = key_code::rightCommand; modifier <= key_code::rightControl; ++modifier) {
      const auto keycode = fresh.keycode(modifier);
      ASSERT_TRUE(keycode) << layout << variant << " has no key " << modifier;
      EXPECT_EQ(fresh.keyCode(*keycode), modifier) << layout << variant;
    }
  }
}

TEST_F(KeyMapTest, TheLayoutMovesCharactersAndNotKeys) {
  struct Row {
    const char* layout;
    const char* variant;
    KeySym onTheKeyOfQ;
  };
  for (const auto& row : std::initializer_list<Row>{
           {"us", "", XK_q}, {"fr", "", XK_a}, {"us", "dvorak", XK_apostrophe}, {"de", "", XK_q}}) {
    display.setLayout(row.layout, row.variant);
    const auto key = KeyMap(connection->get()).keycode(key_code::q);
    ASSERT_TRUE(key);
    const auto reader = Connection::open(display.name());
    EXPECT_EQ(XkbKeycodeToKeysym(reader->get(), *key, 0, 0), row.onTheKeyOfQ) << row.layout << row.variant;
  }
}

TEST_F(KeyMapTest, FlagsAreTheModifierBitsOfTheirKeys) {
  EXPECT_EQ(keys.modifierBits(0), 0U);
  EXPECT_EQ(keys.modifierBits(shift), unsigned(ShiftMask));
  EXPECT_EQ(keys.modifierBits(command), unsigned(ControlMask));
  EXPECT_EQ(keys.modifierBits(option), unsigned(Mod1Mask));
  EXPECT_EQ(keys.modifierBits(control), unsigned(Mod4Mask));
  EXPECT_EQ(keys.modifierBits(shift | option), unsigned(ShiftMask | Mod1Mask));
}

TEST_F(KeyMapTest, FollowsAChangeOfTheModifiers) {
  ASSERT_EQ(keys.modifierBits(control), unsigned(Mod4Mask));
  Child command({"setxkbmap", "-display", display.name(), "-option", "altwin:ctrl_win"}, {});
  ASSERT_EQ(command.wait(), 0);
  EXPECT_TRUE(follows([&] { return keys.modifierBits(control) == unsigned(ControlMask); }));
}

TEST_F(KeyMapTest, WhatTheKeyboardLacksHasNoNumber) {
  EXPECT_EQ(keys.keycode(key_code::none), std::nullopt);
  EXPECT_EQ(keys.keycode(127), std::nullopt);
  EXPECT_EQ(keys.keycode(key_code::function), std::nullopt);
  EXPECT_EQ(keys.keyCode(0), key_code::none);
}

}  // namespace
}  // namespace keyvora::x11
