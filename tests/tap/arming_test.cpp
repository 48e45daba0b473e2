#include <gtest/gtest.h>

#include "runner/own_event_marker.h"
#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

using platform::KeyEvent;
using namespace platform::event_flag;
using namespace platform::event_type;

struct Step {
  KeyEvent event;
  bool inTarget = true;
};

Step change(std::uint16_t keyCode, std::uint64_t flags) {
  return {{flagsChanged, keyCode, flags, 0}};
}
Step down(std::uint16_t keyCode, std::uint64_t flags) {
  return {{keyDown, keyCode, flags, 0}};
}
Step up(std::uint16_t keyCode, std::uint64_t flags) {
  return {{keyUp, keyCode, flags, 0}};
}
Step elsewhere(Step step) {
  return {step.event, false};
}
Step ours(Step step) {
  step.event.userData = ownEventMarker;
  return step;
}

struct Case {
  const char* what;
  std::vector<Step> steps;
  bool arms;

  friend void PrintTo(const Case& row, std::ostream* out) { *out << row.what; }
};

const Step optionDown = change(key::leftOption, option);
const Step optionUp = change(key::leftOption, 0);

const std::vector<Case> cases{
    {"left Option alone", {optionDown, optionUp}, true},
    {"right Option alone", {change(key::rightOption, option), change(key::rightOption, 0)}, true},
    {"up on the other side", {optionDown, change(key::rightOption, 0)}, true},
    {"both Options, the last up counts",
     {optionDown, change(key::rightOption, option), change(key::leftOption, option),
      change(key::rightOption, 0)},
     true},
    {"up without down", {optionUp}, false},
    {"up twice", {optionDown, change(key::leftShift, option | shift), optionUp, optionUp}, false},
    {"Shift between",
     {optionDown, change(key::leftShift, option | shift), change(key::leftShift, option), optionUp},
     false},
    {"right Shift between", {optionDown, change(key::rightShift, option | shift), optionUp}, false},
    {"Control between", {optionDown, change(key::leftControl, option | control), optionUp}, false},
    {"right Control between", {optionDown, change(key::rightControl, option | control), optionUp}, false},
    {"Command between", {optionDown, change(key::leftCommand, option | command), optionUp}, false},
    {"right Command between", {optionDown, change(key::rightCommand, option | command), optionUp}, false},
    {"Caps Lock between", {optionDown, change(key::capsLock, option | 0x10000), optionUp}, false},
    {"Fn between", {optionDown, change(key::function, option | 0x800000), optionUp}, false},
    {"any other key code of a modifier change between", {optionDown, change(0, option), optionUp}, false},
    {"Shift held before",
     {change(key::leftShift, shift), change(key::leftOption, shift | option), change(key::leftOption, shift)},
     true},
    {"every other modifier held before",
     {change(key::leftOption, shift | control | command | option),
      change(key::leftOption, shift | control | command)},
     true},
    {"a letter with Option between", {optionDown, down(key::a, option), optionUp}, false},
    {"the end of a letter with Option between", {optionDown, up(key::a, option), optionUp}, false},
    {"Escape with Option between", {optionDown, down(key::escape, option), optionUp}, false},
    {"a key-down without the Option flag between", {optionDown, down(key::a, 0), optionUp}, true},
    {"a key-up without the Option flag between", {optionDown, up(key::a, 0), optionUp}, true},
    {"Option pressed again after another key",
     {optionDown, down(key::a, option), optionUp, optionDown, optionUp},
     true},
    {"our own key between", {optionDown, ours(down(key::a, option)), optionUp}, true},
    {"our own Shift between", {optionDown, ours(change(key::leftShift, shift)), optionUp}, true},
    {"our own Option", {ours(optionDown), ours(optionUp)}, false},
    {"our own Option down only", {ours(optionDown), optionUp}, false},
    {"the system switching the tap off between",
     {optionDown, {{tapDisabledByTimeout, 0, 0, 0}}, optionUp},
     true},
    {"a key elsewhere between", {optionDown, elsewhere(down(key::a, option)), optionUp}, true},
    {"Option down elsewhere", {elsewhere(optionDown), optionUp}, false},
    {"Option up elsewhere", {optionDown, elsewhere(optionUp)}, false},
    {"Option up elsewhere and again here", {optionDown, elsewhere(optionUp), optionUp}, true},
    {"both elsewhere", {elsewhere(optionDown), elsewhere(optionUp)}, false},
};

class ArmingTest : public ::testing::TestWithParam<Case> {};

TEST_P(ArmingTest, ALoneOptionTapArmsAndNothingElse) {
  TapRig rig(mappingOf({"HFC"}));
  StepResult last;
  for (const auto& step : GetParam().steps) {
    EXPECT_NE(last, arms()) << "armed too early";
    last = rig.event(step.event, step.inTarget);
    EXPECT_EQ(last.verdict, platform::Verdict::pass);
  }
  const bool armed = last == arms();
  EXPECT_EQ(armed, GetParam().arms);
  const auto letter = rig.keyDown(key::h);
  EXPECT_EQ(letter, armed ? swallows({reportsArmed("H")}) : passes());
}

INSTANTIATE_TEST_SUITE_P(Table, ArmingTest, ::testing::ValuesIn(cases),
                         [](const auto& row) { return testName(row.param.what); });

TEST(ArmingTest, NothingElapsesBetweenDownAndUp) {
  TapRig rig(mappingOf({"H"}));
  rig.flagsChanged(key::leftOption, option);
  EXPECT_EQ(rig.advance(60'000'000), brings());
  EXPECT_EQ(rig.flagsChanged(key::leftOption, 0), arms());
}

TEST(ArmingTest, WithoutLettersItStaysArmed) {
  TapRig rig(mappingOf({"H"}));
  rig.tapOption();
  EXPECT_EQ(rig.advance(3'600'000'000), brings());
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H"), reportsIdle(), types("tH", "H  nH")}));
}

TEST(ArmingTest, WorksWithoutACallback) {
  TapRig rig(mappingOf({"H"}));
  rig.tap().onStateChange = nullptr;
  EXPECT_EQ(rig.tapOption(), passes({logs("armed: Option tapped in Excel")}));
  EXPECT_EQ(rig.keyDown(key::h), swallows({types("tH", "H  nH")}));
}

}  // namespace
}  // namespace keyvora::testing
