#include <gtest/gtest.h>

#include "hosts/x11/keyboard/layouts.h"

#include <X11/XKBlib.h>
#include <xkbcommon/xkbcommon.h>

#include <array>

#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"
#include "platform/key_code.h"
#include "runner/key_names.h"
#include "tests/x11/private_session.h"

namespace keyvora::x11 {
namespace {

/// A layout as an argument of setxkbmap, and its name.
struct Case {
  std::string layout;
  std::string variant;
  std::string name;
};

/// What a key types according to the server, with the same names.
std::string typedOnServer(Display* display, KeyCode key, unsigned modifiers) {
  unsigned consumed = 0;
  KeySym symbol = NoSymbol;
  XkbLookupKeySym(display, key, modifiers, &consumed, &symbol);
  std::array<char, 64> buffer{};
  const auto code = xkb_keysym_t(symbol);
  if (xkb_keysym_to_utf8(code, buffer.data(), buffer.size()) <= 1) {
    xkb_keysym_get_name(code, buffer.data(), buffer.size());
  }
  return buffer.data();
}

class LayoutsTest : public testing::TestWithParam<Case> {};

/// Checks the keys that actions can press.
TEST_P(LayoutsTest, TypesWhatTheServerTypes) {
  const PrivateSession session;
  session.display().setLayout(GetParam().layout, GetParam().variant);
  const auto connection = Connection::open("");
  Display* display = connection->get();
  const KeyMap keys(display);
  const auto layout = layoutNamed(GetParam().name);
  ASSERT_TRUE(layout);
  int compared = 0;
  for (const auto& key : keyNames) {
    if (key.name.size() > 1) continue;
    const auto keycode = keys.keycode(key.code);
    ASSERT_TRUE(keycode) << key.name;
    const auto& typed = layout->at(key.code);
    EXPECT_EQ(typed.alone, typedOnServer(display, *keycode, 0)) << key.name;
    EXPECT_EQ(typed.withShift, typedOnServer(display, *keycode, ShiftMask)) << key.name;
    ++compared;
  }
  EXPECT_EQ(compared, 47);
}

INSTANTIATE_TEST_SUITE_P(Layouts, LayoutsTest,
                         testing::Values(Case{"us", "", "us"}, Case{"fr", "", "fr"}, Case{"de", "", "de"},
                                         Case{"ch", "fr", "ch(fr)"}, Case{"us", "dvorak", "us(dvorak)"},
                                         Case{"ru", "", "ru"}),
                         [](const auto& test) { return test.param.layout + test.param.variant; });

TEST(Layouts, TheCommonOnesExist) {
  EXPECT_FALSE(commonLayouts().empty());
  for (const auto& name : commonLayouts()) EXPECT_TRUE(layoutNamed(name)) << name;
}

TEST(Layouts, WhatIsNoLayoutIsNone) {
  for (const std::string name : {"qwerty", "fr(qwerty)", "", "fr(", "fr()", "(fr)", "fr)", "fr,de", "fr+de",
                                 "../fr", "fr:2", "fr(nodeadkeys)x", "fr(bepox", "fr\n"}) {
    EXPECT_FALSE(layoutNamed(name)) << name;
  }
}

TEST(Layouts, ADeadKeyHasAName) {
  const auto french = layoutNamed("fr");
  ASSERT_TRUE(french);
  EXPECT_EQ(french->at(platform::key_code::leftBracket),
            (platform::TypedByKey{"dead_circumflex", "dead_diaeresis"}));
  EXPECT_EQ(french->at(platform::key_code::returnKey).alone, "Return");
}

}  // namespace
}  // namespace keyvora::x11
