#include <gtest/gtest.h>

#include "text/text.h"

namespace keyvora::text {
namespace {

struct Row {
  std::string_view text;
  std::string_view upper;
  std::string_view lower;
};

TEST(Casing, MapsWholeStringsWithoutLocaleOrContext) {
  const Row rows[] = {
      {"", "", ""},
      {"hfC 1-é", "HFC 1-É", "hfc 1-é"},
      {"i", "I", "i"},
      {"I", "I", "i"},
      {"[\\]^_`{|}~@", "[\\]^_`{|}~@", "[\\]^_`{|}~@"},
      {"ß", "SS", "ß"},
      {"ẞ", "ẞ", "ß"},
      {"ŉ", "ʼN", "ŉ"},
      {"ﬁ", "FI", "ﬁ"},
      {"ﬃ", "FFI", "ﬃ"},
      {"İ", "İ", "i\u0307"},
      {"ı", "I", "ı"},
      {"ΑΣ", "ΑΣ", "ασ"},
      {"σς", "ΣΣ", "σς"},
      {"ǅ", "Ǆ", "ǆ"},
      {"ǰ", "J\u030C", "ǰ"},
      {"ΐ", "Ι\u0308\u0301", "ΐ"},
      {"և", "ԵՒ", "և"},
      {"ᾀ", "ἈΙ", "ᾀ"},
      {"ᾈ", "ἈΙ", "ᾀ"},
      {"ᾳ", "ΑΙ", "ᾳ"},
      {"\u0345", "Ι", "\u0345"},
      {"µ", "Μ", "µ"},
      {"ſ", "S", "ſ"},
      {"\u212A", "\u212A", "k"},
      {"\u212B", "\u212B", "å"},
      {"\u2126", "\u2126", "ω"},
      {"ა", "Ა", "ა"},
      {"Ꭰ", "Ꭰ", "ꭰ"},
      {"ａⓐⅰ𐐨", "ＡⒶⅠ𐐀", "ａⓐⅰ𐐨"},
      {"é e\u0301", "É E\u0301", "é e\u0301"},
      {"1😀\uE000", "1😀\uE000", "1😀\uE000"},
      {std::string_view("a\0b", 3), std::string_view("A\0B", 3), std::string_view("a\0b", 3)},
      {"a\xFF"
       "b",
       "A\uFFFD"
       "B",
       "a\uFFFD"
       "b"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(upperCased(row.text), row.upper);
    EXPECT_EQ(lowerCased(row.text), row.lower);
  }
}

}  // namespace
}  // namespace keyvora::text
