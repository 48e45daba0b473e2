#include "runner/key_names.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace keyvora {
namespace {

TEST(KeyNamesTest, HoldsEveryKeyOnce) {
  const std::vector<std::pair<std::string, int>> expected{
      {"a", 0},    {"b", 11},      {"c", 8},    {"d", 2},    {"e", 14},    {"f", 3},      {"g", 5},
      {"h", 4},    {"i", 34},      {"j", 38},   {"k", 40},   {"l", 37},    {"m", 46},     {"n", 45},
      {"o", 31},   {"p", 35},      {"q", 12},   {"r", 15},   {"s", 1},     {"t", 17},     {"u", 32},
      {"v", 9},    {"w", 13},      {"x", 7},    {"y", 16},   {"z", 6},     {"0", 29},     {"1", 18},
      {"2", 19},   {"3", 20},      {"4", 21},   {"5", 23},   {"6", 22},    {"7", 26},     {"8", 28},
      {"9", 25},   {"=", 24},      {"-", 27},   {"[", 33},   {"]", 30},    {"'", 39},     {";", 41},
      {"\\", 42},  {",", 43},      {"/", 44},   {".", 47},   {"`", 50},    {"space", 49}, {"return", 36},
      {"tab", 48}, {"escape", 53}, {"f1", 122}, {"f2", 120}, {"f3", 99},   {"f4", 118},   {"f5", 96},
      {"f6", 97},  {"f7", 98},     {"f8", 100}, {"f9", 101}, {"f10", 109}, {"f11", 103},  {"f12", 111},
  };
  ASSERT_EQ(expected.size(), 63U);
  for (const auto& [name, code] : expected) EXPECT_EQ(keyCodeFor(name), code) << name;

  std::set<std::string_view> names;
  std::set<int> codes;
  for (const auto& key : keyNames) {
    names.insert(key.name);
    codes.insert(key.code);
  }
  EXPECT_EQ(names.size(), 63U);
  EXPECT_EQ(codes.size(), 63U);
}

struct Case {
  const char* name;
  std::optional<std::uint16_t> code;
};

TEST(KeyNamesTest, NamesAreMatchedInAnyCaseAndNotOtherwise) {
  for (const auto& [name, code] : {
           Case{"Return", 36},    Case{"RETURN", 36}, Case{"rEtUrN", 36},
           Case{"A", 0},          Case{"F12", 111},   Case{"\u212A", 40},  // the Kelvin sign is a capital K
           Case{"\u037E", 41},  // the Greek question mark is a semicolon
           Case{"\u1FEF", 50},  // the Greek varia is a grave accent
           Case{"", {}},          Case{" a", {}},     Case{"a ", {}},
           Case{" ", {}},         Case{"aa", {}},     Case{"esc", {}},
           Case{"enter", {}},     Case{"delete", {}}, Case{"forward delete", {}},
           Case{"backspace", {}}, Case{"left", {}},   Case{"up", {}},
           Case{"home", {}},      Case{"end", {}},    Case{"page up", {}},
           Case{"pageup", {}},    Case{"f0", {}},     Case{"f13", {}},
           Case{"F13", {}},       Case{"f01", {}},    Case{"keypad1", {}},
           Case{"+", {}},         Case{"!", {}},      Case{"\u00E9", {}},
           Case{"\u0130", {}},  // lower-cased, it is two code points: i and a dot above
           Case{"\u017F", {}},  // the long s is lower-case already
           Case{"\uFF41", {}},  // the full-width a is only compatible with an a
           Case{"\xFF", {}},
       }) {
    EXPECT_EQ(keyCodeFor(name), code) << name;
  }
}

}  // namespace
}  // namespace keyvora
