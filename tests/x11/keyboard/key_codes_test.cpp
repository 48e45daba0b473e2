#include "hosts/x11/keyboard/key_codes.h"

#include <gtest/gtest.h>

#include <array>

namespace keyvora::x11 {
namespace {

struct Row {
  std::string_view name;
  std::uint16_t code;
};

/// The keys that actions can press and sequences can use, in the order of the ANSI keyboard.
constexpr auto rows = std::to_array<Row>({
    {"AC01", 0},   {"AC02", 1},   {"AC03", 2},   {"AC04", 3},   {"AC06", 4},   {"AC05", 5},   {"AB01", 6},
    {"AB02", 7},   {"AB03", 8},   {"AB04", 9},   {"AB05", 11},  {"AD01", 12},  {"AD02", 13},  {"AD03", 14},
    {"AD04", 15},  {"AD06", 16},  {"AD05", 17},  {"AE01", 18},  {"AE02", 19},  {"AE03", 20},  {"AE04", 21},
    {"AE06", 22},  {"AE05", 23},  {"AE12", 24},  {"AE09", 25},  {"AE07", 26},  {"AE11", 27},  {"AE08", 28},
    {"AE10", 29},  {"AD12", 30},  {"AD09", 31},  {"AD07", 32},  {"AD11", 33},  {"AD08", 34},  {"AD10", 35},
    {"RTRN", 36},  {"AC09", 37},  {"AC07", 38},  {"AC11", 39},  {"AC08", 40},  {"AC10", 41},  {"BKSL", 42},
    {"AB08", 43},  {"AB10", 44},  {"AB06", 45},  {"AB07", 46},  {"AB09", 47},  {"TAB", 48},   {"SPCE", 49},
    {"TLDE", 50},  {"ESC", 53},   {"FK05", 96},  {"FK06", 97},  {"FK07", 98},  {"FK03", 99},  {"FK08", 100},
    {"FK09", 101}, {"FK11", 103}, {"FK10", 109}, {"FK12", 111}, {"FK04", 118}, {"FK02", 120}, {"FK01", 122},
    {"LCTL", 55},  {"RCTL", 54},  {"LFSH", 56},  {"RTSH", 60},  {"LALT", 58},  {"RALT", 61},  {"LWIN", 59},
    {"RWIN", 62},  {"CAPS", 57},
});

TEST(KeyCodes, NamesAndCodesStandForTheSameKeys) {
  for (const auto& row : rows) {
    EXPECT_EQ(keyCodeNamed(row.name), row.code) << row.name;
    EXPECT_EQ(keyName(row.code), row.name) << row.code;
  }
}

TEST(KeyCodes, EveryCodeThatHasANameComesBackFromIt) {
  for (std::uint16_t code = 0; code < 256; ++code) {
    if (const auto name = keyName(code)) {
      EXPECT_EQ(keyCodeNamed(*name), code) << *name;
    }
  }
}

TEST(KeyCodes, KeysWithoutACodeAreUnknown) {
  EXPECT_EQ(keyCodeNamed("I151"), key_code::none);
  EXPECT_EQ(keyCodeNamed(""), key_code::none);
  EXPECT_EQ(keyCodeNamed("ad01"), key_code::none);
  EXPECT_EQ(keyName(key_code::none), std::nullopt);
  EXPECT_EQ(keyName(127), std::nullopt);
}

TEST(KeyCodes, OnlyTheModifierKeysAreModifiers) {
  for (std::uint16_t code = 0; code < 256; ++code)
    EXPECT_EQ(isModifier(code), code >= 54 && code <= 62) << code;
  EXPECT_FALSE(isModifier(key_code::none));
  EXPECT_TRUE(key_code::isOption(58) && key_code::isOption(61));
  EXPECT_FALSE(key_code::isOption(55) || key_code::isOption(59) || key_code::isOption(key_code::none));
}

}  // namespace
}  // namespace keyvora::x11
