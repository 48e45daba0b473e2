#include "runner/key_plan.h"

#include <gtest/gtest.h>

#include "platform/key_code.h"

namespace keyvora {

/// Prints one for GoogleTest, which finds it by its name.
void PrintTo(const PlannedKey& key, std::ostream* out);

void PrintTo(const PlannedKey& key, std::ostream* out) {
  *out << key.character << ":" << key.code;
}

namespace {

using platform::key_code::none;

struct Case {
  const char* keys;
  std::vector<PlannedKey> plan;
};

TEST(KeyPlanTest, HasEachCharacterWithItsKey) {
  for (const auto& [keys, plan] : {
           Case{"", {}}, Case{" \t\n\u00A0\u2003", {}}, Case{"h x", {{"H", 4}, {"X", 7}}},
           Case{"f1", {{"F", 3}, {"1", 18}}}, Case{"tab", {{"T", 17}, {"A", 0}, {"B", 11}}},
           Case{"[-=];", {{"[", 33}, {"-", 27}, {"=", 24}, {"]", 30}, {";", 41}}},
           Case{"\u00DF", {{"S", 1}, {"S", 1}}}, Case{"\uFB01", {{"F", 3}, {"I", 34}}},  // the ligature fi
           Case{"\u0131", {{"I", 34}}},                                                  // the dotless i
           Case{"\u212A", {{"\u212A", 40}}},                                             // the Kelvin sign
           Case{"ab!", {{"A", 0}, {"B", 11}, {"!", none}}}, Case{"a\u00E9", {{"A", 0}, {"\u00C9", none}}},
           Case{"e\u0301", {{"E\u0301", none}}},
           Case{"\u1E96", {{"H\u0331", none}}},  // upper-cased, an H and a line below it
           Case{"a\r\nb", {{"A", 0}, {"B", 11}}},
           Case{"a \u0301", {{"A", 0}}},                        // the accent combines with the white space
           Case{"a\n\u0301b", {{"A\u0301", none}, {"B", 11}}},  // but not with a line break
       }) {
    EXPECT_EQ(keyPlan(keys), plan) << keys;
  }
}

TEST(KeyPlanTest, TellsTheFirstCharacterWithoutAKey) {
  struct Missing {
    const char* keys;
    std::optional<std::string> character;
  };
  for (const auto& [keys, character] : {Missing{"", {}}, Missing{"h f c", {}}, Missing{"ab!", "!"},
                                        Missing{"!?", "!"}, Missing{"a\u00E9\u00E8", "\u00C9"}}) {
    EXPECT_EQ(firstWithoutKey(keyPlan(keys)), character) << keys;
  }
}

}  // namespace
}  // namespace keyvora
