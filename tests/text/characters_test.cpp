#include <gtest/gtest.h>

#include <span>

#include "text/text.h"

namespace keyvora::text {
namespace {

using Characters = std::vector<std::string>;

struct Row {
  std::string_view text;
  Characters characters;
};

void expectCharacters(std::span<const Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(characters(row.text), row.characters);
  }
}

TEST(Characters, SplitIntoExtendedGraphemeClusters) {
  const Row rows[] = {
      {"", {}},
      {"HFC", {"H", "F", "C"}},
      {"e\u0301x", {"e\u0301", "x"}},
      {" \u0301", {" \u0301"}},
      {"\r\n", {"\r\n"}},
      {"\n\r", {"\n", "\r"}},
      {"a\r\n\r\n", {"a", "\r\n", "\r\n"}},
      {"\t\u0301", {"\t", "\u0301"}},
      {"a\u200Bb", {"a", "\u200B", "b"}},
      {"a\u200Db", {"a\u200D", "b"}},
      {"👨‍👩‍👧", {"👨‍👩‍👧"}},
      {"👍🏻❤️1️⃣", {"👍🏻", "❤️", "1️⃣"}},
      {"🏴󠁧󠁢󠁥󠁮󠁧󠁿", {"🏴󠁧󠁢󠁥󠁮󠁧󠁿"}},
      {"🇩🇪🇫", {"🇩🇪", "🇫"}},
      {"🇩🇪🇫🇷", {"🇩🇪", "🇫🇷"}},
      {"\u1100\u1161\u11A8", {"\u1100\u1161\u11A8"}},
      {"\uAC00\u11A8", {"\uAC00\u11A8"}},
      {"กำ", {"กำ"}},
      {"நி", {"நி"}},
      {"\u0600"
       "1",
       {"\u0600"
        "1"}},
      {"ｶﾞ", {"ｶﾞ"}},
  };
  expectCharacters(rows);
}

TEST(Characters, KeepIndicConjunctsWhole) {
  const Row rows[] = {
      {"क्ष", {"क्ष"}},
      {"क्त्य", {"क्त्य"}},
      {"क्\u200Dष", {"क्\u200Dष"}},
      {"क\u093C्ष", {"क\u093C्ष"}},
      {"कष", {"क", "ष"}},
      {"क्\uFE0Fष", {"क्\uFE0F", "ष"}},
      {"काष", {"का", "ष"}},
      {"क् ष", {"क्", " ", "ष"}},
      {"ক্ষ", {"ক্ষ"}},
      // Tamil and Kannada do not join consonants; nor does a virama that follows anything else.
      {"க்ஷ", {"க்", "ஷ"}},
      {"ಕ್ಷ", {"ಕ್", "ಷ"}},
      {"a्ष", {"a्", "ष"}},
  };
  expectCharacters(rows);
}

TEST(Characters, TreatReservedCodePointsAsWhatTheyAreReservedFor) {
  const Row rows[] = {
      {"\U000E0EAF\u0301", {"\U000E0EAF", "\u0301"}},
      {"\uFFF0\u0301", {"\uFFF0", "\u0301"}},
      {"\U000E0100\u0301", {"\U000E0100\u0301"}},
      {"😀\u200D\U0001FE0F", {"😀\u200D\U0001FE0F"}},
  };
  expectCharacters(rows);
}

TEST(Characters, ReplaceIllFormedBytes) {
  const Row rows[] = {
      {"a\xFF"
       "b",
       {"a", "\uFFFD", "b"}},
      {"\xED\xA0\x80", {"\uFFFD", "\uFFFD", "\uFFFD"}},
      {"\xE2\x82", {"\uFFFD"}},
      {"\xFF\u0301", {"\uFFFD\u0301"}},
  };
  expectCharacters(rows);
}

TEST(WhiteSpace, IsDecidedByTheFirstCodePoint) {
  const std::string_view white[] = {"\t",     "\n",     "\v",     "\f",     "\r",     " ",
                                    "\u0085", "\u00A0", "\u1680", "\u2000", "\u200A", "\u2028",
                                    "\u2029", "\u202F", "\u205F", "\u3000", "\r\n",   " \u0301"};
  for (const auto character : white) EXPECT_TRUE(isWhiteSpace(character)) << character;
  const std::string_view other[] = {"",       "A",      "\u0301", "\u200B", "\u2060", "\uFEFF",
                                    "\u180E", "\u001C", "\u2800", "\u3164", "\xA0"};
  for (const auto character : other) EXPECT_FALSE(isWhiteSpace(character)) << character;
}

}  // namespace
}  // namespace keyvora::text
