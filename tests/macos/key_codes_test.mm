#include "runner/key_names.h"

#import <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <map>
#include <string_view>

namespace keyvora::macos {
namespace {

TEST(KeyCodes, AreTheSystemsOwn) {
  // clang-format off
  const std::map<std::string_view, int> system{
    {"a", kVK_ANSI_A},
    {"s", kVK_ANSI_S},
    {"d", kVK_ANSI_D},
    {"f", kVK_ANSI_F},
    {"h", kVK_ANSI_H},
    {"g", kVK_ANSI_G},
    {"z", kVK_ANSI_Z},
    {"x", kVK_ANSI_X},
    {"c", kVK_ANSI_C},
    {"v", kVK_ANSI_V},
    {"b", kVK_ANSI_B},
    {"q", kVK_ANSI_Q},
    {"w", kVK_ANSI_W},
    {"e", kVK_ANSI_E},
    {"r", kVK_ANSI_R},
    {"y", kVK_ANSI_Y},
    {"t", kVK_ANSI_T},
    {"1", kVK_ANSI_1},
    {"2", kVK_ANSI_2},
    {"3", kVK_ANSI_3},
    {"4", kVK_ANSI_4},
    {"6", kVK_ANSI_6},
    {"5", kVK_ANSI_5},
    {"9", kVK_ANSI_9},
    {"7", kVK_ANSI_7},
    {"8", kVK_ANSI_8},
    {"o", kVK_ANSI_O},
    {"u", kVK_ANSI_U},
    {"p", kVK_ANSI_P},
    {"i", kVK_ANSI_I},
    {"l", kVK_ANSI_L},
    {"j", kVK_ANSI_J},
    {"k", kVK_ANSI_K},
    {"n", kVK_ANSI_N},
    {"m", kVK_ANSI_M},
    {"0", kVK_ANSI_0},
    {"=", kVK_ANSI_Equal},
    {"-", kVK_ANSI_Minus},
    {"]", kVK_ANSI_RightBracket},
    {"[", kVK_ANSI_LeftBracket},
    {"'", kVK_ANSI_Quote},
    {";", kVK_ANSI_Semicolon},
    {"\\", kVK_ANSI_Backslash},
    {",", kVK_ANSI_Comma},
    {"/", kVK_ANSI_Slash},
    {".", kVK_ANSI_Period},
    {"`", kVK_ANSI_Grave},
    {"space", kVK_Space},
    {"return", kVK_Return},
    {"tab", kVK_Tab},
    {"escape", kVK_Escape},
    {"f1", kVK_F1},
    {"f2", kVK_F2},
    {"f3", kVK_F3},
    {"f4", kVK_F4},
    {"f5", kVK_F5},
    {"f6", kVK_F6},
    {"f7", kVK_F7},
    {"f8", kVK_F8},
    {"f9", kVK_F9},
    {"f10", kVK_F10},
    {"f11", kVK_F11},
    {"f12", kVK_F12},
  };
  // clang-format on
  ASSERT_EQ(system.size(), keyNames.size());
  for (const auto& [name, code] : keyNames) {
    ASSERT_TRUE(system.contains(name)) << name;
    EXPECT_EQ(system.at(name), code) << name;
  }
}

}  // namespace
}  // namespace keyvora::macos
