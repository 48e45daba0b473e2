#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>

#include "mapping/decode.h"
#include "mapping/encode.h"
#include "mapping/mapping.h"

namespace keyvora {
namespace {

Mapping sample() {
  Mapping mapping;
  mapping.version = 7;
  mapping.notes = {"é"};
  mapping.timeoutMilliseconds = 0;
  mapping.tabs = {{"H", "Home"}, {"é", "É"}};
  mapping.sequences = {{"é", "Name", action::Keystroke{"v", {"shift"}}}};
  return mapping;
}

TEST(Mapping, IsEqualWhenAllItsFieldsAreCanonicallyEquivalent) {
  EXPECT_EQ(sample(), sample());
  Mapping decomposed = sample();
  decomposed.notes = {"e\u0301"};
  decomposed.tabs = {{"e\u0301", "E\u0301"}, {"H", "Home"}};
  decomposed.sequences[0].keys = "e\u0301";
  EXPECT_EQ(decomposed, sample());
}

TEST(Mapping, WaitsAsLongAsItSaysUncheckedOrASecondAndAHalf) {
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::optional<std::int64_t> written;
    std::int64_t milliseconds;
  } rows[] = {{std::nullopt, 1500}, {800, 800}, {0, 0}, {-5, -5}, {most, most}};
  for (const auto& row : rows) {
    Mapping mapping;
    mapping.timeoutMilliseconds = row.written;
    EXPECT_EQ(mapping.timeout().count(), row.milliseconds);
  }
}

TEST(Mapping, DiffersWhenOneFieldDoes) {
  const std::vector<std::function<void(Mapping&)>> changes = {
      [](Mapping& m) { m.version = 8; },
      [](Mapping& m) { m.notes.reset(); },
      [](Mapping& m) {
        m.notes = {"é", "é"};
      },
      [](Mapping& m) { m.notes = {"e"}; },
      [](Mapping& m) { m.timeoutMilliseconds.reset(); },
      [](Mapping& m) { m.timeoutMilliseconds = 1; },
      [](Mapping& m) { m.tabs.erase("H"); },
      [](Mapping& m) { m.tabs["H"] = "home"; },
      [](Mapping& m) { m.sequences.clear(); },
      [](Mapping& m) { m.sequences.push_back(m.sequences[0]); },
      [](Mapping& m) { m.sequences[0].keys = "É"; },
      [](Mapping& m) { m.sequences[0].name = "name"; },
      [](Mapping& m) {
        m.sequences[0].action = action::Keystroke{"v", {}};
      },
      [](Mapping& m) {
        m.sequences[0].action = action::Keystroke{"V", {"shift"}};
      },
      [](Mapping& m) { m.sequences[0].action = action::KeyTips{"v"}; },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Mapping changed = sample();
    changes[i](changed);
    EXPECT_FALSE(changed == sample()) << i;
  }
  EXPECT_NE(Action(action::KeyTips{"a"}), Action(action::AppleScript{"a"}));
  EXPECT_NE(Action(action::Menu{{"a"}}), Action(action::Menu{{"a", "b"}}));
}

TEST(KeyOrder, TakesCanonicallyEquivalentKeysForOne) {
  std::map<std::string, int, KeyOrder> keys;
  EXPECT_TRUE(keys.emplace("é", 1).second);
  EXPECT_FALSE(keys.emplace("e\u0301", 2).second);
  EXPECT_TRUE(keys.emplace("K", 3).second);
  EXPECT_FALSE(keys.emplace("\u212A", 4).second);
  EXPECT_TRUE(keys.emplace("e", 5).second);
  EXPECT_TRUE(keys.emplace("k", 6).second);
  EXPECT_EQ(keys.find(std::string_view("e\u0301"))->second, 1);
}

TEST(Encode, WritesCompactJsonWithSortedKeys) {
  Mapping mapping;
  EXPECT_EQ(encode(mapping), R"({"sequences":[],"tabs":{},"version":1})");
  mapping.version = INT64_MIN;
  mapping.notes = {"a/b", "\"\\\n\x01\x7Fé😀"};
  mapping.timeoutMilliseconds = INT64_MAX;
  mapping.tabs = {{"é", "4"}, {"f", "3"}, {"B", "1"}, {"a", "2"}};
  mapping.sequences = {
      {"A", "1", action::AppleScript{"s"}},
      {"B", "2", action::Keystroke{"k", {}}},
      {"C", "3", action::KeyTips{"t"}},
      {"D", "4", action::Menu{{"x", "y"}}},
  };
  EXPECT_EQ(encode(mapping),
            R"({"notes":["a/b","\"\\\n\u0001)"
            "\x7Fé😀"
            R"("],"sequences":[{"action":{"kind":"applescript","script":"s"},"keys":"A","name":"1"},)"
            R"({"action":{"key":"k","kind":"keystroke","modifiers":[]},"keys":"B","name":"2"},)"
            R"({"action":{"keys":"t","kind":"keytips"},"keys":"C","name":"3"},)"
            R"({"action":{"kind":"menu","path":["x","y"]},"keys":"D","name":"4"}],)"
            R"("tabs":{"B":"1","a":"2","f":"3","é":"4"},)"
            R"("timeoutMilliseconds":9223372036854775807,"version":-9223372036854775808})");
  EXPECT_EQ(std::get<Mapping>(decode(encode(mapping))), mapping);
}

}  // namespace
}  // namespace keyvora
