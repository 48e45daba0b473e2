#include <gtest/gtest.h>

#include "json/tree.h"

namespace keyvora::json {
namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view bytes;
  std::string_view reason;
  Position position;
};

TEST(JsonSyntax, EveryFaultHasItsReasonAndPlace) {
  const Row rows[] = {
      {"", "the document is empty", {1, 1}},
      {" \n ", "the document is empty", {2, 2}},
      {"\xEF\xBB\xBF", "the document is empty", {1, 1}},
      {"{} {}", "expected nothing more after the document, found '{'", {1, 4}},
      {"{}\0"sv, "expected nothing more after the document, found U+0000", {1, 3}},
      {"[],", "expected nothing more after the document, found ','", {1, 3}},
      {"[] // end", "comments are not allowed", {1, 4}},
      {"]", "expected a value, found ']'", {1, 1}},
      {"[", "expected a value, found the end of the document", {1, 2}},
      {"[1,", "expected a value, found the end of the document", {1, 4}},
      {"[,]", "expected a value, found ','", {1, 2}},
      {"[1,,]", "expected a value, found ','", {1, 4}},
      {"[\u00A0]", "expected a value, found U+00A0", {1, 2}},
      {"[\uFEFF]", "expected a value, found U+FEFF", {1, 2}},
      {"\uFEFF\uFEFF[]", "expected a value, found U+FEFF", {1, 1}},
      {"[True]", "expected a value, found 'T'", {1, 2}},
      {"[nul]", "expected a value, found ']'", {1, 5}},
      {"[NaN]", "expected a value, found 'N'", {1, 2}},
      {"[-Infinity]", "expected a value, found 'I'", {1, 3}},
      {"[+1]", "expected a value, found '+'", {1, 2}},
      {"[.5]", "expected a value, found '.'", {1, 2}},
      {"[-]", "expected a value, found ']'", {1, 3}},
      {"['a']", "strings are written in double quotes", {1, 2}},
      {"[/*c*/1]", "comments are not allowed", {1, 2}},
      {"[#c\n1]", "comments are not allowed", {1, 2}},
      {"[1 2]", "expected a comma or ']', found '2'", {1, 4}},
      {"[01]", "expected a comma or ']', found '1'", {1, 3}},
      {"[0x1]", "expected a comma or ']', found 'x'", {1, 3}},
      {"[-0.0.0]", "expected a comma or ']', found '.'", {1, 6}},
      {"[1.5e3.5]", "expected a comma or ']', found '.'", {1, 7}},
      {"[1e999e9]", "expected a comma or ']', found 'e'", {1, 7}},
      {"[1_000]", "expected a comma or ']', found '_'", {1, 3}},
      {"[\"a\"\"b\"]", "expected a comma or ']', found '\"'", {1, 5}},
      {"[1}", "expected a comma or ']', found '}'", {1, 3}},
      {"[1.]", "expected a digit after the decimal point, found ']'", {1, 4}},
      {"[1.e2]", "expected a digit after the decimal point, found 'e'", {1, 4}},
      {"[1e]", "expected a digit in the exponent, found ']'", {1, 4}},
      {"[1e+]", "expected a digit in the exponent, found ']'", {1, 5}},
      {"{", "expected a key in double quotes, found the end of the document", {1, 2}},
      {"{,}", "expected a key in double quotes, found ','", {1, 2}},
      {"{a:1}", "expected a key in double quotes, found 'a'", {1, 2}},
      {"{1:1}", "expected a key in double quotes, found '1'", {1, 2}},
      {"{\"a\":1,,}", "expected a key in double quotes, found ','", {1, 8}},
      {"{\"a\"}", "expected a colon after the key, found '}'", {1, 5}},
      {"{\"a\" \"b\"}", "expected a colon after the key, found '\"'", {1, 6}},
      {"{\"a\":}", "expected a value, found '}'", {1, 6}},
      {"{\"a\"::1}", "expected a value, found ':'", {1, 6}},
      {"{\"a\":1 \"b\":2}", "expected a comma or '}', found '\"'", {1, 8}},
      {"{\"a\":1", "expected a comma or '}', found the end of the document", {1, 7}},
      {"{\"a\":1]", "expected a comma or '}', found ']'", {1, 7}},
      {"[\n  \"a,\n  \"b\"]",
       "a control character in a string is written as an escape, found U+000A",
       {2, 6}},
      {"[\n  \"a, b]", "the string has no end", {2, 3}},
      {"{\"a", "the string has no end", {1, 2}},
      {"[\"\t\"]", "a control character in a string is written as an escape, found U+0009", {1, 3}},
      {"[\"a\0\"]"sv, "a control character in a string is written as an escape, found U+0000", {1, 4}},
      {"[\"\\x\"]", "no escape starts with a backslash and 'x'", {1, 3}},
      {"[\"\\U0041\"]", "no escape starts with a backslash and 'U'", {1, 3}},
      {"[\"\\é\"]", "no escape starts with a backslash and U+00E9", {1, 3}},
      {"[\"\\u12G4\"]", "\\u takes four hexadecimal digits", {1, 3}},
      {"[\"\\u12\"]", "\\u takes four hexadecimal digits", {1, 3}},
      {"[\"\\ud800\"]", "half of a surrogate pair is no character", {1, 3}},
      {"[\"\\ud800\\u0041\"]", "half of a surrogate pair is no character", {1, 3}},
      {"[\"\\ud800\\ud800\"]", "half of a surrogate pair is no character", {1, 3}},
      {"[\"\\udc00\"]", "half of a surrogate pair is no character", {1, 3}},
      {"[\"\\\\udc00 \\ud83d\\ude00\\u00dc\\uDFFF\"]", "half of a surrogate pair is no character", {1, 29}},
      {"{\"\\udc00\":1}", "half of a surrogate pair is no character", {1, 3}},
      {"[\n\"é\xFF\"]", "the text is not well-formed Unicode", {2, 3}},
      {"[\"\xED\xA0\x80\"]", "the text is not well-formed Unicode", {1, 3}},
      {"[\xC0\xAF]", "the text is not well-formed Unicode", {1, 2}},
      {"\xFF\xFE[\0\"\0\0\xD8\"\0]\0"sv, "the text is not well-formed Unicode", {1, 3}},
      {"\xFF\xFE[\0]\0\0"sv, "the text is not well-formed Unicode", {1, 3}},
      {"\0\0\0[\0\x11\0\0"sv, "the text is not well-formed Unicode", {1, 2}},
      {"\0\0\0[\0\0\xD8\0"sv, "the text is not well-formed Unicode", {1, 2}},
      // FF FE is the byte-order mark of UTF-16, even if zeros follow.
      {"\xFF\xFE\0\0[\0\0\0]\0\0\0"sv, "expected a value, found U+0000", {1, 1}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.bytes));
    const auto result = Tree::parse(row.bytes);
    const auto* error = std::get_if<SyntaxError>(&result);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->reason, row.reason);
    EXPECT_EQ(error->position.line, row.position.line);
    EXPECT_EQ(error->position.column, row.position.column);
  }
}

}  // namespace
}  // namespace keyvora::json
