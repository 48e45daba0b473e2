#include "text/utf8.h"

#include <gtest/gtest.h>

#include <vector>

#include "text/text.h"

namespace keyvora::text {
namespace {

/// The code points of a text, read one by one.
std::u32string read(std::string_view text) {
  std::u32string result;
  while (!text.empty()) {
    const auto codePoint = firstCodePoint(text);
    result.push_back(codePoint.value);
    text.remove_prefix(codePoint.length);
  }
  return result;
}

TEST(Utf8, ReplacesEachMaximalPartThatIsIllFormed) {
  struct Row {
    std::string_view bytes;
    std::u32string_view codePoints;
    std::size_t wellFormed;
  };
  const Row rows[] = {
      {"", U"", 0},
      {"aé€😀", U"aé€😀", 10},
      {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", U"\uFFFF\U0010FFFF", 7},
      {"a\x80", U"a\uFFFD", 1},
      {"\xC0\xAF", U"\uFFFD\uFFFD", 0},
      {"\xC1\xBF", U"\uFFFD\uFFFD", 0},
      {"\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD", 0},
      {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD", 0},
      {"\xF0\x8F\xBF\xBF", U"\uFFFD\uFFFD\uFFFD\uFFFD", 0},
      {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD", 0},
      {"\xF5\x80", U"\uFFFD\uFFFD", 0},
      {"\xC3", U"\uFFFD", 0},
      {"\xE2\x82", U"\uFFFD", 0},
      {"\xF0\x9F\x98", U"\uFFFD", 0},
      {"\xE2\x82z", U"\uFFFDz", 0},
      {"\xF0\x9F\x98\xC3\xA9", U"\uFFFDé", 0},
      {"12345678\xFF", U"12345678\uFFFD", 8},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.bytes));
    EXPECT_EQ(read(row.bytes), row.codePoints);
    EXPECT_EQ(wellFormedPrefix(row.bytes), row.wellFormed);
  }
}

TEST(Utf8, TextIsMadeFitToBeShown) {
  EXPECT_EQ(validText(""), "");
  EXPECT_EQ(validText("aé€😀"), "aé€😀");
  EXPECT_EQ(validText("a\xFFz\xE2\x82"), "a\uFFFDz\uFFFD");
  EXPECT_EQ(validText(std::string_view("a\0b", 3)), "a\uFFFDb") << "a toolkit's text would end there";
  EXPECT_TRUE(isWellFormed("aé€😀"));
  EXPECT_FALSE(isWellFormed("a\xFF"));
}

TEST(Utf8, WritesWhatItReads) {
  for (const char32_t codePoint : {U'\0', U'\x7F', U'\x80', U'\u07FF', U'\u0800', U'\uD7FF', U'\uE000',
                                   U'\uFFFF', U'\U00010000', U'\U0010FFFF'}) {
    std::string text;
    append(text, codePoint);
    const auto back = firstCodePoint(text);
    EXPECT_EQ(back.value, codePoint);
    EXPECT_EQ(back.length, text.size());
    EXPECT_TRUE(back.wellFormed);
  }
}

TEST(Utf8, TellsAsciiWhereverTheOtherByteStands) {
  EXPECT_TRUE(isAscii(""));
  EXPECT_TRUE(isAscii(std::string(20, '\x7F')));
  for (std::size_t i = 0; i < 20; ++i) {
    std::string text(20, 'a');
    text[i] = '\x80';
    EXPECT_FALSE(isAscii(text)) << i;
  }
}

}  // namespace
}  // namespace keyvora::text
