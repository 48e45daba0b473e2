#include <gtest/gtest.h>

#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

struct Case {
  const char* what;
  Sequence sequence;
  Happening call;

  friend void PrintTo(const Case& row, std::ostream* out) { *out << row.what; }
};

const std::vector<Case> cases{
    {"applescript",
     {"HF", "Fill", action::AppleScript{"beep\n"}},
     {"run", "applescript", "beep\n", "HF  Fill"}},
    {"keystroke",
     {"HF", "Fill", action::Keystroke{"F1", {"cmd", "Shift"}}},
     {"run", "keystroke", "F1", "[", "cmd", "Shift", "]", "HF  Fill"}},
    {"keystroke without modifiers",
     {"HF", "Fill", action::Keystroke{"x", {}}},
     {"run", "keystroke", "x", "[", "]", "HF  Fill"}},
    {"keytips", {"HF", "Fill", action::KeyTips{"h f c"}}, {"run", "keytips", "h f c", "HF  Fill"}},
    {"menu",
     {"HF", "Fill", action::Menu{{"File", "Save"}}},
     {"run", "menu", "[", "File", "Save", "]", "HF  Fill"}},
    {"empty path", {"HF", "Fill", action::Menu{}}, {"run", "menu", "[", "]", "HF  Fill"}},
    {"the label has the keys as written",
     {" h\tf ", "Fill  color", action::KeyTips{"x"}},
     {"run", "keytips", "x", " h\tf   Fill  color"}},
    {"the label of a nameless sequence", {"hf", "", action::KeyTips{"x"}}, {"run", "keytips", "x", "hf  "}},
};

class FiringTest : public ::testing::TestWithParam<Case> {};

TEST_P(FiringTest, DisarmsAndThenCallsTheRunnerOnce) {
  Mapping mapping;
  mapping.sequences = {GetParam().sequence};
  TapRig rig(mapping);
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF"), reportsIdle(), GetParam().call}));
  EXPECT_EQ(rig.keyUp(key::f), passes());
  EXPECT_EQ(rig.keyDown(key::f), passes()) << "idle again";
  EXPECT_EQ(rig.advance(10'000'000), brings()) << "fired twice";
}

INSTANTIATE_TEST_SUITE_P(Table, FiringTest, ::testing::ValuesIn(cases),
                         [](const auto& row) { return testName(row.param.what); });

TEST(FiringTest, TheLastOfEqualSequencesFires) {
  TapRig rig(mappingOf({"hf", "H F"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF"), reportsIdle(), types("tH F", "H F  nH F")}));
}

TEST(FiringTest, TheDocumentIsReadAnewAtEveryLetter) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.reload(mappingOf({"HC"}));
  EXPECT_EQ(rig.keyDown(key::c), swallows({reportsArmed("HC"), reportsIdle(), types("tHC", "HC  nHC")}));
}

TEST(FiringTest, AReloadInsideTheReportDecidesTheSameLetter) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.tap().onStateChange = [&](bool, const std::string&) { rig.reload(mappingOf({"H"})); };
  EXPECT_EQ(rig.keyDown(key::h), swallows({types("tH", "H  nH")}));
}

TEST(FiringTest, AReloadWhileFiringDoesNotChangeWhatFires) {
  TapRig rig(mappingOf({"H"}));
  rig.tapOption();
  rig.tap().onStateChange = [&](bool armed, const std::string&) {
    if (!armed) rig.reload(Mapping{});
  };
  EXPECT_EQ(rig.keyDown(key::h), swallows({types("tH", "H  nH")}));
}

}  // namespace
}  // namespace keyvora::testing
