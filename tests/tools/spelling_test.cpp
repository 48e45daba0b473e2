#include "tools/spelling.h"

#include <gtest/gtest.h>

#include <array>

namespace keyvora::tools {
namespace {

constexpr std::array<std::string_view, 5> words{"keys", "name", "timeoutMilliseconds", "tab", "b"};

TEST(SpellingTest, NamesTheWordThatWasMeant) {
  struct Case {
    std::string_view written;
    std::optional<std::string_view> meant;
  };
  const Case cases[] = {
      {"keys", "keys"},
      {"Keys", "keys"},
      {" keys\t", "keys"},
      {"kyes", "keys"},
      {"key", "keys"},
      {"nane", "name"},
      {"enam", {}},
      {"comment", {}},
      {"timeoutMiliseconds", "timeoutMilliseconds"},
      {"timoutMilisecond", {}},
      {"tabs", "tab"},
      {"B", "b"},
      {"c", {}},
      {"", {}},
      {std::string_view("a word that is far too long to be a slip of anything"), {}},
  };
  for (const auto& [written, meant] : cases) EXPECT_EQ(nearest(written, words), meant) << written;
}

TEST(SpellingTest, TrimsBlanksAtBothEnds) {
  EXPECT_EQ(trimmed(" \t a b\r\n"), "a b");
  EXPECT_EQ(trimmed("  "), "");
}

}  // namespace
}  // namespace keyvora::tools
