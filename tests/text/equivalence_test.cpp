#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/processor_time.h"
#include "text/text.h"

namespace keyvora::text {
namespace {

struct Row {
  std::string_view a;
  std::string_view b;
  bool equal;
};

TEST(Equivalence, IsCanonical) {
  const Row rows[] = {
      {"", "", true},
      {"Format", "Format", true},
      {"Format", "format", false},
      {"a", "ab", false},
      {"é", "e\u0301", true},
      {"\u212A", "K", true},
      {"\u212B", "Å", true},
      {"\u2126", "Ω", true},
      {"\u037E", ";", true},
      {"\u1FEF", "`", true},
      {"\u2000", "\u2002", true},
      {"\uF900", "\u8C48", true},
      {"\u1100\u1161\u11A8", "\uAC01", true},
      {"q\u0307\u0323", "q\u0323\u0307", true},
      {"q\u0301\u0300", "q\u0300\u0301", false},
      {"ṩ", "s\u0307\u0323", true},
      {"ﬁ", "fi", false},
      {"ß", "ss", false},
      {"Ａ", "A", false},
      {"½", "1⁄2", false},
      {"\u00A0", " ", false},
      {"a\u200D", "a", false},
      {"\r\n", "\n", false},
      {"\xFF", "\uFFFD", true},
      {std::string_view("a\0b", 3), std::string_view("a\0c", 3), false},
      {std::string_view("a\0", 2), "a", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.a) + " / " + std::string(row.b));
    EXPECT_EQ(equal(row.a, row.b), row.equal);
    EXPECT_EQ(equal(row.b, row.a), row.equal);
    EXPECT_EQ(canonical(row.a) == canonical(row.b), row.equal);
  }
}

TEST(Equivalence, OrdersLongRunsOfMarksQuickly) {
  std::string marks = "a";
  for (int i = 0; i < 200'000; ++i) marks += i % 2 == 0 ? "\u0301" : "\u0323";
  const auto start = test::processorTime();
  EXPECT_TRUE(equal(marks, canonical(marks)));
  EXPECT_LT(test::processorTime() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace keyvora::text
