#include <gtest/gtest.h>

#include "mapping/mapping.h"
#include "tests/mapping/counting_new.h"

namespace keyvora {
namespace {

using Letters = std::vector<std::string>;

Mapping withKeys(const Letters& keys) {
  Mapping mapping;
  for (const auto& one : keys) mapping.sequences.push_back({one, {}, {}});
  return mapping;
}

TEST(Letters, AreUpperCasedSplitAndFreedOfWhiteSpace) {
  const std::pair<std::string, Letters> rows[] = {
      {"", {}},
      {" \t\r\n\u00A0\u3000", {}},
      {"h f c", {"H", "F", "C"}},
      {"HFC", {"H", "F", "C"}},
      {"Hf\tC", {"H", "F", "C"}},
      {"H-F", {"H", "-", "F"}},
      {"ß", {"S", "S"}},
      {"ŉ", {"ʼ", "N"}},
      {"é e\u0301", {"É", "E\u0301"}},
      {"a \u0301b", {"A", "B"}},
      {"👍🏻x", {"👍🏻", "X"}},
      {"a\xFF", {"A", "\uFFFD"}},
  };
  for (const auto& [keys, letters] : rows) EXPECT_EQ((Sequence{keys, {}, {}}.letters()), letters) << keys;
}

TEST(Lookup, FindsTheLastExactMatchAndLongerOnes) {
  struct Row {
    Letters keys;
    Letters typed;
    std::ptrdiff_t exact;
    bool isPrefixOfLonger;
  };
  constexpr std::ptrdiff_t none = -1;
  const Row rows[] = {
      {{}, {}, none, false},
      {{}, {"H"}, none, false},
      {{"HF", "HFC"}, {"H"}, none, true},
      {{"HF", "HFC"}, {"H", "F"}, 0, true},
      {{"HF", "HFC"}, {"H", "F", "C"}, 1, false},
      {{"HF", "HFC"}, {"X"}, none, false},
      {{"HF", "HFC"}, {"H", "F", "C", "D"}, none, false},
      {{"HFC", "HF"}, {"H", "F"}, 1, true},
      {{"ab", "A B"}, {"A", "B"}, 1, false},
      {{"ab", "A B", "abc", "AB"}, {"A", "B"}, 3, true},
      {{"a"}, {"a"}, none, false},
      {{" ", "A"}, {}, 0, true},
      {{"", " \r\n"}, {}, 1, false},
      {{"H-F"}, {"H"}, none, true},
      {{"H-F"}, {"H", "-"}, none, true},
      {{"Hé"}, {"H"}, none, true},
      {{"Hé"}, {"H", "E\u0301"}, 0, false},
      {{"He\u0301"}, {"H", "E"}, none, false},
      {{"e\u0301"}, {"É"}, 0, false},
      {{"ß"}, {"S"}, none, true},
      {{"ß"}, {"S", "S"}, 0, false},
      {{"k"}, {"\u212A"}, 0, false},
      {{"\u212A"}, {"K"}, 0, false},
      {{"AB"}, {"AB"}, none, false},
      {{"A\r\nB"}, {"A", "B"}, 0, false},
      {{"AB"}, {"A", ""}, none, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.keys) + " typed " + testing::PrintToString(row.typed));
    const Mapping mapping = withKeys(row.keys);
    const Match match = mapping.lookup(row.typed);
    EXPECT_EQ(match.exact == nullptr ? none : match.exact - mapping.sequences.data(), row.exact);
    EXPECT_EQ(match.isPrefixOfLonger, row.isPrefixOfLonger);
  }
}

TEST(Lookup, AllocatesNothingForAscii) {
  const Mapping mapping = withKeys({"hfc", "H F C", "a key with many letters in it", "", "x-1", "HF\r\n"});
  const Letters typed[] = {{}, {"H"}, {"H", "F"}, {"H", "F", "C"}, {"Z"}, {"1", "2", "3", "4"}};
  for (const auto& letters : typed) {
    counting::reset();
    const Match match = mapping.lookup(letters);
    EXPECT_EQ(counting::since().count, 0U) << testing::PrintToString(letters) << match.isPrefixOfLonger;
  }
  const Mapping accented = withKeys({"é"});
  counting::reset();
  static_cast<void>(accented.lookup(typed[1]));
  EXPECT_GT(counting::since().count, 0U) << "the counter counts nothing";
}

}  // namespace
}  // namespace keyvora
