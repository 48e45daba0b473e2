#include <gtest/gtest.h>  // before Xlib, whose macros conflict with it

#include "hosts/x11/keyboard/key_map.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include <algorithm>
#include <string_view>

#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/sticky_keys.h"
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

  /// Handles changes of the keyboard description until the condition is true.
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
      // If the right Alt key selects third-level characters, there is only one Option key.
      const bool hasAltGr = std::string_view(layout) != "us";
      const auto keycode = fresh.keycode(modifier);
      ASSERT_EQ(keycode.has_value(), !hasAltGr || modifier != key_code::rightOption) << layout << modifier;
      if (!keycode) continue;
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
  constexpr KeyCode leftSuper = 133;
  ASSERT_EQ(keys.meaning(leftSuper).flag, control);
  Child setting({"setxkbmap", "-display", display.name(), "-option", "altwin:ctrl_win"}, {});
  ASSERT_EQ(setting.wait(), 0);
  EXPECT_TRUE(follows([&] { return keys.meaning(leftSuper).flag == command; }));
  EXPECT_EQ(keys.modifierBits(control), unsigned(Mod4Mask)) << "no key makes it, applications know it";
}

TEST_F(KeyMapTest, ModifiersAreWhatTheyDo) {
  constexpr KeyCode leftAlt = 64;
  constexpr KeyCode rightAlt = 108;
  constexpr KeyCode leftControl = 37;
  constexpr KeyCode leftSuper = 133;
  struct Row {
    const char* layout;
    const char* choice;
    KeyCode key;
    std::uint16_t code;
    bool isModifier;
    std::uint64_t flag;
  };
  for (const auto& row : std::initializer_list<Row>{
           {"us", "", leftAlt, key_code::leftOption, true, option},
           {"us", "", rightAlt, key_code::rightOption, true, option},
           {"de", "", rightAlt, key_code::none, true, option},
           {"us", "compose:ralt", rightAlt, key_code::none, false, 0},
           {"us,de", "grp:toggle", rightAlt, key_code::none, true, 0},
           {"us", "altwin:swap_alt_win", leftAlt, key_code::leftControl, true, control},
           {"us", "altwin:swap_alt_win", leftSuper, key_code::leftOption, true, option},
           {"us", "ctrl:swap_lalt_lctl", leftAlt, key_code::leftCommand, true, command},
           {"us", "ctrl:swap_lalt_lctl", leftControl, key_code::leftOption, true, option},
           {"us", "altwin:meta_win", leftSuper, key_code::leftOption, true, option},
           {"us", "altwin:meta_win", leftAlt, key_code::leftOption, true, option},
       }) {
    display.setLayout(row.layout);
    Child command({"setxkbmap", "-display", display.name(), "-option", "", "-option", row.choice}, {});
    ASSERT_EQ(command.wait(), 0);
    const auto isTrue = [&] {
      const auto& meaning = keys.meaning(row.key);
      return meaning.keyCode == row.code && meaning.isModifier == row.isModifier && meaning.flag == row.flag;
    };
    EXPECT_TRUE(follows(isTrue)) << row.layout << " " << row.choice << " " << int(row.key);
    const auto& options = keys.optionKeycodes();
    EXPECT_EQ(std::ranges::find(options, row.key) != options.end(), key_code::isOption(row.code))
        << row.layout << " " << row.choice << " " << int(row.key);
  }
}

TEST_F(KeyMapTest, AKeyMeansWhatItDoesInTheGroupInForce) {
  constexpr KeyCode rightAlt = 108;
  display.setLayout("us,de");
  const auto control = Connection::open(display.name());
  for (const unsigned group : {0U, 1U, 0U}) {
    XkbLockGroup(control->get(), XkbUseCoreKbd, group);
    XSync(control->get(), False);
    const auto expected = group == 0 ? key_code::rightOption : key_code::none;
    EXPECT_TRUE(follows([&] { return keys.keyCode(rightAlt) == expected; })) << group;
    EXPECT_EQ(keys.optionKeycodes().size(), 2U) << "grabbed in either";
  }
}

TEST_F(KeyMapTest, StickyKeysAreKnownOf) {
  EXPECT_FALSE(keys.stickyKeys());
  const auto control = Connection::open(display.name());
  XkbChangeEnabledControls(control->get(), XkbUseCoreKbd, XkbStickyKeysMask, XkbStickyKeysMask);
  XSync(control->get(), False);
  EXPECT_TRUE(stickyKeysAreOn(control->get()));
  EXPECT_TRUE(follows([&] { return keys.stickyKeys(); }));
  XkbChangeEnabledControls(control->get(), XkbUseCoreKbd, XkbStickyKeysMask, 0);
  XSync(control->get(), False);
  EXPECT_FALSE(stickyKeysAreOn(control->get()));
  EXPECT_TRUE(follows([&] { return !keys.stickyKeys(); }));
}

TEST_F(KeyMapTest, WhatTheKeyboardLacksHasNoNumber) {
  EXPECT_EQ(keys.keycode(key_code::none), std::nullopt);
  EXPECT_EQ(keys.keycode(127), std::nullopt);
  EXPECT_EQ(keys.keycode(key_code::function), std::nullopt);
  EXPECT_EQ(keys.keyCode(0), key_code::none);
}

}  // namespace
}  // namespace keyvora::x11
