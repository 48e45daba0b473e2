#include <gtest/gtest.h>

#include "runner/own_event_marker.h"
#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using simulated::Call;
using namespace platform::event_flag;
using namespace platform::event_type;

TEST(PassingTest, IdleKeysReachTheTarget) {
  TapRig rig(mappingOf({"H"}));
  for (const auto keyCode : {key::h, key::escape, key::space}) {
    EXPECT_EQ(rig.keyDown(keyCode), passes());
    EXPECT_EQ(rig.keyUp(keyCode), passes());
    EXPECT_EQ(rig.keyDown(keyCode, option), passes());
  }
}

TEST(PassingTest, EveryEventElsewherePassesAndReportsIdle) {
  TapRig rig(mappingOf({"H"}));
  const std::vector<KeyEvent> events{
      {keyDown, key::h, 0, 0},
      {keyDown, key::h, 0, 0},
      {keyUp, key::h, 0, 0},
      {keyDown, key::escape, 0, 0},
      {keyDown, key::h, option, 0},
      {flagsChanged, key::leftOption, option, 0},
      {flagsChanged, key::leftShift, 0, 0},
  };
  for (const auto& event : events) EXPECT_EQ(rig.event(event, false), passes({reportsIdle()}));
  rig.tapOption();
  for (const auto& event : events) EXPECT_EQ(rig.event(event, false), passes({reportsIdle()}));
}

struct Front {
  std::optional<std::string> identifier;
  bool isTarget;
};

TEST(PassingTest, TheTargetIsKnownByItsExactIdentifier) {
  TapRig rig(mappingOf({"H"}));
  for (const auto& front : {Front{std::nullopt, false}, Front{"", false}, Front{"com.microsoft.excel", false},
                            Front{"com.microsoft.Excel2", false}, Front{"com.microsoft.Exce", false},
                            Front{"com.microsoft.Excel", true}}) {
    rig.host().applications.front = front.identifier;
    rig.tap().handle(flagsChanged, {flagsChanged, key::leftOption, option, 0});
    rig.tap().handle(flagsChanged, {flagsChanged, key::leftOption, 0, 0});
    const auto verdict = rig.tap().handle(keyDown, {keyDown, key::x, 0, 0});
    EXPECT_EQ(verdict == Verdict::swallow, front.isTarget) << front.identifier.value_or("none");
  }
}

TEST(PassingTest, OurOwnEventsPassAndChangeNothing) {
  const std::vector<KeyEvent> events{
      {keyDown, key::h, 0, ownEventMarker},
      {keyDown, key::x, 0, ownEventMarker},
      {keyDown, key::escape, 0, ownEventMarker},
      {keyDown, key::space, 0, ownEventMarker},
      {keyUp, key::h, 0, ownEventMarker},
      {flagsChanged, key::leftShift, shift, ownEventMarker},
      {flagsChanged, key::leftOption, option, ownEventMarker},
      {flagsChanged, key::leftOption, 0, ownEventMarker},
  };
  TapRig rig(mappingOf({"HF"}));
  for (const auto& event : events) EXPECT_EQ(rig.event(event, true), passes());
  rig.tapOption();
  for (const auto& event : events) EXPECT_EQ(rig.event(event, true), passes());
  for (const auto& event : events)
    EXPECT_EQ(rig.event(event, false), passes()) << "not even looked at elsewhere";
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
}

TEST(PassingTest, OnlyTheWholeMarkerIsOurs) {
  EXPECT_EQ(ownEventMarker, 1585091011);
  for (const std::int64_t userData : {std::int64_t{0}, std::int64_t{1}, ownEventMarker + 1, -ownEventMarker,
                                      ownEventMarker | std::int64_t{1} << 32}) {
    TapRig rig(mappingOf({"H"}));
    rig.tapOption();
    EXPECT_EQ(rig.event({keyDown, key::h, 0, userData}, true).verdict, Verdict::swallow) << userData;
  }
}

TEST(PassingTest, ATapThatTheSystemSwitchedOffIsSwitchedOnAgain) {
  for (const auto type : {tapDisabledByTimeout, tapDisabledByUserInput}) {
    TapRig rig(mappingOf({"HF"}));
    EXPECT_EQ(rig.event({type, 0, 0, 0}, true), passes({enables()}));
    rig.tapOption();
    rig.keyDown(key::h);
    EXPECT_EQ(rig.event({type, key::escape, option, ownEventMarker}, true), passes({enables()}));
    EXPECT_EQ(rig.event({type, 0, 0, 0}, false), passes({enables()})) << "wherever the user is";
    EXPECT_TRUE(rig.host().keyboard.tapsEnabled());
    EXPECT_EQ(rig.keyDown(key::f).verdict, Verdict::swallow) << "still armed";
  }
}

TEST(PassingTest, TheTypeIsLookedAtBeforeAnythingElse) {
  TapRig rig(mappingOf({"H"}));
  const auto asked = rig.host().failures.count(Call::frontmost);
  rig.event({tapDisabledByTimeout, 0, 0, 0}, false);
  EXPECT_EQ(rig.tap().handle(tapDisabledByUserInput, KeyEvent{}), Verdict::pass);
  EXPECT_EQ(rig.host().failures.count(Call::frontmost), asked);
}

TEST(PassingTest, OurOwnEventsDoNotAskWhatIsInFront) {
  TapRig rig(mappingOf({"H"}));
  const auto asked = rig.host().failures.count(Call::frontmost);
  rig.event({keyDown, key::h, 0, ownEventMarker}, false);
  EXPECT_EQ(rig.host().failures.count(Call::frontmost), asked);
  rig.event({keyDown, key::h, 0, 0}, false);
  EXPECT_EQ(rig.host().failures.count(Call::frontmost), asked + 1);
}

TEST(PassingTest, TypesBelowTheTopTwoAreNotTapDisabled) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  for (const auto type : {0U, 1U, 9U, 13U, 14U, 0x7FFFFFFEU, 0xFFFFFFFDU}) {
    EXPECT_EQ(rig.tap().handle(type, {type, key::x, 0, 0}), Verdict::pass) << type;
  }
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")})) << "and no other type is a key-down";
}

}  // namespace
}  // namespace keyvora::testing
