#include "tools/layouts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "hosts/simulated/host.h"
#include "runner/key_names.h"
#include "tests/support/scratch_directory.h"
#include "text/text.h"
#include "tools/command.h"

namespace keyvora::tools {
namespace {

using platform::KeyboardLayout;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

/// A key by its name on a US keyboard, and what it types in another layout.
struct Differs {
  std::string_view key;
  platform::TypedByKey types;
};

/// Letters and digits; the digits' Shift characters in their order from 1 to 0.
KeyboardLayout unitedStates() {
  constexpr std::string_view digits = "1234567890";
  constexpr std::string_view shifted = "!@#$%^&*()";
  KeyboardLayout layout;
  for (const auto& key : keyNames) {
    const std::string name(key.name);
    const auto digit = digits.find(name);
    layout[key.code] = {
        name, digit == std::string_view::npos ? text::upperCased(name) : std::string(1, shifted[digit])};
  }
  return layout;
}

KeyboardLayout otherLayout(std::initializer_list<Differs> differences) {
  auto layout = unitedStates();
  for (const auto& [key, types] : differences) layout[*keyCodeFor(key)] = types;
  return layout;
}

std::unique_ptr<platform::Host> makeSystem() {
  auto host = std::make_unique<simulated::Host>();
  host->keyboard.layouts = {
      {"us", unitedStates()},
      {"fr", otherLayout({{"q", {"a", "A"}},
                          {"a", {"q", "Q"}},
                          {"m", {",", "?"}},
                          {";", {"m", "M"}},
                          {"1", {"&", "1"}},
                          {"4", {"'", "4"}},
                          {"]", {"$", "£"}},
                          {"[", {"dead_circumflex", "dead_diaeresis"}},
                          {"=", {"", ""}}})},
      // H, J and D are exchanged, so no label is on its own letter's key.
      {"turned", otherLayout({{"h", {"d", "D"}}, {"d", {"j", "J"}}, {"j", {"h", "H"}}})},
      {"ru", otherLayout({{"h", {"р", "Р"}}, {"b", {"и", "И"}}})}};
  return host;
}

std::unique_ptr<platform::Host> makeSystemWithoutLayouts() {
  return std::make_unique<simulated::Host>();
}

/// `check --layout` of a document with one sequence.
struct LayoutsTest : testing::Test {
  int check(const std::string& layouts, const std::string& keys, const std::string& action,
            std::vector<std::string> options = {}) {
    test::write(file, R"({"version": 1, "tabs": {}, "sequences": [{"keys": ")" + keys +
                          R"(", "name": "It", "action": )" + action + "}]}");
    std::vector<std::string> arguments{"check", "--layout", layouts, file.string()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    out.str("");
    error.str("");
    return run(arguments, {out, error, host});
  }

  /// The findings about a sequence's action.
  std::string ofAction(const std::string& layout, const std::string& action) {
    EXPECT_EQ(check(layout, "X", action), 0);
    return withoutPlaces(out.str());
  }

  std::string ofKeys(const std::string& layout, const std::string& keys) {
    EXPECT_EQ(check(layout, keys, R"({"kind": "menu", "path": ["A"]})"), 0);
    return withoutPlaces(out.str());
  }

  static std::string withoutPlaces(const std::string& lines) {
    std::string texts;
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
      const std::string start = ": warning: sequences[0].";
      texts += line.substr(line.find(start) + start.size()) + "\n";
    }
    return texts;
  }

  test::ScratchDirectory folder;
  std::filesystem::path file = folder / "mappings.json";
  std::ostringstream out;
  std::ostringstream error;
  HostMaker host = makeSystem;
};

std::string keystroke(const std::string& key, const std::string& modifiers = "[\"command\"]") {
  return R"({"kind": "keystroke", "key": ")" + key + R"(", "modifiers": )" + modifiers + "}";
}

std::string keyTips(const std::string& keys) {
  return R"({"kind": "keytips", "keys": ")" + keys + R"("})";
}

TEST_F(LayoutsTest, AKeystrokeThatTypesSomethingElseIsNamedWithTheKeyToWrite) {
  EXPECT_EQ(ofAction("fr", keystroke("q")),
            "action.key: under fr this key types \"a\", not \"q\"; to type \"q\" write \"a\"\n");
  EXPECT_EQ(ofAction("fr", keystroke("Q")),
            "action.key: under fr this key types \"a\", not \"q\"; to type \"q\" write \"a\"\n");
  EXPECT_EQ(
      ofAction("fr", keystroke("[")),
      "action.key: under fr this key types \"dead_circumflex\", not \"[\"; no key types \"[\" there: use "
      "another kind of action\n");
  EXPECT_EQ(
      ofAction("fr", keystroke("=")),
      "action.key: under fr this key types nothing, not \"=\"; no key types \"=\" there: use another kind "
      "of action\n");
  EXPECT_EQ(
      ofAction("ru", keystroke("b")),
      "action.key: under ru this key types \"и\", not \"b\"; no key types \"b\" there: use another kind "
      "of action\n");
}

TEST_F(LayoutsTest, ShiftCounts) {
  EXPECT_EQ(
      ofAction("fr", keystroke("1", "[]")),
      "action.key: under fr this key types \"&\", not \"1\"; to type \"1\" write \"1\" with \"shift\"\n");
  EXPECT_EQ(
      ofAction("fr", keystroke("4", R"(["command", "Shift"])")),
      "action.key: under fr this key with Shift types \"4\", not \"$\"; to type \"$\" write \"]\" without "
      "\"shift\"\n");
  EXPECT_EQ(ofAction("fr", keystroke("q", "[\"shift\"]")),
            "action.key: under fr this key with Shift types \"A\", not \"Q\"; to type \"Q\" write \"a\"\n");
}

TEST_F(LayoutsTest, KeyTipsAreNamedWithWhatToWrite) {
  EXPECT_EQ(
      ofAction("fr", keyTips("h a m")),
      "action.keys: under fr these keys type \"H Q ,\", not \"H A M\"; to type \"H A M\" write \"HQ;\"\n");
  EXPECT_EQ(
      ofAction("fr", keyTips("HA1")),
      "action.keys: under fr these keys type \"H Q &\", not \"H A 1\"; no key types \"1\" there without "
      "Shift: use another kind of action\n");
  EXPECT_EQ(ofAction("fr", keyTips("=")),
            "action.keys: under fr these keys type \"?\", not \"=\"; no key types \"=\" there without Shift: "
            "use another kind of action\n");
}

TEST_F(LayoutsTest, LettersOnKeysWithOtherLabelsAreNamedWithWhatToWrite) {
  EXPECT_EQ(ofKeys("fr", "h a"),
            "keys: under fr this is typed on the keys labelled \"H Q\"; for the keys labelled \"H A\" write "
            "\"HQ\"\n");
  EXPECT_EQ(
      ofKeys("fr", "AM"),
      "keys: under fr this is typed on the keys labelled \"Q ,\"; no key of a sequence is labelled \"M\" "
      "there\n");
  EXPECT_EQ(
      ofKeys("turned", "HD"),
      "keys: under turned this is typed on the keys labelled \"D J\"; for the keys labelled \"H D\" write "
      "\"JH\"\n");
  EXPECT_EQ(
      ofKeys("ru", "HX"),
      "keys: under ru this is typed on the keys labelled \"Р X\"; no key of a sequence is labelled \"H\" "
      "there\n");
}

TEST_F(LayoutsTest, ALabelThatNeedsShiftIsALabelToo) {
  EXPECT_EQ(ofKeys("fr", "H14"), "") << "the tap does not look at Shift";
}

TEST_F(LayoutsTest, WhatIsTheSameIsNotNamed) {
  EXPECT_EQ(ofKeys("fr", "HFC"), "");
  for (const auto& action :
       {keystroke("b"), keystroke("return"), keystroke("F1"), keyTips("H B"), keyTips("")}) {
    EXPECT_EQ(ofAction("fr", action), "") << action;
    EXPECT_EQ(ofAction("us", action), "") << action;
  }
}

TEST_F(LayoutsTest, WhatOtherRulesReportIsNotNamedTwice) {
  for (const auto& action : {keystroke("qq"), keystroke("é"), keyTips("Aé")}) {
    EXPECT_EQ(check("fr", "A-", action), 0);
    EXPECT_THAT(out.str(), testing::Not(HasSubstr("under fr"))) << action;
  }
}

TEST_F(LayoutsTest, SeveralLayoutsAreHeldOneAfterTheOther) {
  EXPECT_EQ(check("fr, turned", "AH", keystroke("b")), 0);
  EXPECT_EQ(out.str(),
            file.string() +
                ":1:51: warning: sequences[0].keys: under fr this is typed on the keys labelled \"Q H\"; "
                "for the keys labelled \"A H\" write \"QH\"\n" +
                file.string() +
                ":1:51: warning: sequences[0].keys: under turned this is typed on the keys labelled \"A D\"; "
                "for the keys labelled \"A H\" write \"AJ\"\n");
}

TEST_F(LayoutsTest, FindingsAreSortedAmongTheOthersAndCountAsWarnings) {
  EXPECT_EQ(check("fr", "A", keystroke("q", "[\"hyper\"]"), {"--strict"}), 1);
  const auto text = out.str();
  const auto letters = text.find("sequences[0].keys: under fr");
  const auto key = text.find("action.key: under fr");
  const auto modifier = text.find("no modifier is called");
  EXPECT_LT(letters, key);
  EXPECT_LT(key, modifier);
  EXPECT_NE(modifier, std::string::npos) << text;
  EXPECT_EQ(check("fr", "X", keystroke("q"), {"--json"}), 0);
  EXPECT_THAT(out.str(), HasSubstr(R"("rule":"layout",)"));
}

TEST_F(LayoutsTest, AnUnknownLayoutIsAnErrorThatNamesSomeThatExist) {
  for (const std::string name : {"qwerty", "fr,qwerty"}) {
    EXPECT_EQ(check(name, "X", keystroke("b")), 2);
    EXPECT_EQ(error.str(),
              "keyvora-mappings: no keyboard layout is called \"qwerty\"; there are fr, ru, turned, us and "
              "others, by the names that setxkbmap takes\n");
    EXPECT_THAT(out.str(), IsEmpty());
  }
  EXPECT_EQ(check("", "X", keystroke("b")), 2);
}

TEST_F(LayoutsTest, ABuildWithoutLayoutsSaysSo) {
  for (const HostMaker without : {HostMaker(nullptr), HostMaker(makeSystemWithoutLayouts)}) {
    host = without;
    EXPECT_EQ(check("fr", "X", keystroke("b")), 2);
    EXPECT_THAT(error.str(), EndsWith("this build knows no keyboard layouts; on Linux there are those of the "
                                      "system\n"));
  }
}

}  // namespace
}  // namespace keyvora::tools
