#include <gtest/gtest.h>

#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

using namespace platform::event_flag;

TEST(LettersTest, LettersAreSwallowedCollectedAndReported) {
  TapRig rig(mappingOf({"HFC1"}));
  rig.tapOption();
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
  EXPECT_EQ(rig.keyUp(key::h), passes());
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF")}));
  EXPECT_EQ(rig.keyDown(key::c), swallows({reportsArmed("HFC")}));
  EXPECT_EQ(rig.keyUp(key::c), passes());
  EXPECT_EQ(rig.keyUp(key::f), passes());
}

TEST(LettersTest, ARepeatedLetterCountsAgain) {
  TapRig rig(mappingOf({"HHC"}));
  rig.tapOption();
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("HH")}));
}

TEST(LettersTest, OtherModifiersThanOptionDoNotMatter) {
  for (const auto flags : {shift, control, command, shift | control | command, std::uint64_t{0x10000}}) {
    TapRig rig(mappingOf({"HF"}));
    rig.tapOption();
    EXPECT_EQ(rig.keyDown(key::h, flags), swallows({reportsArmed("H")})) << flags;
  }
}

TEST(LettersTest, KeysWithOptionReachTheTargetAndChangeNothing) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  for (const auto keyCode : {key::h, key::x, key::escape, key::space}) {
    EXPECT_EQ(rig.keyDown(keyCode, option), passes()) << keyCode;
    EXPECT_EQ(rig.keyUp(keyCode, option | shift), passes()) << keyCode;
  }
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
}

TEST(LettersTest, OtherModifierChangesLeaveItArmed) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  EXPECT_EQ(rig.flagsChanged(key::leftShift, shift), passes());
  EXPECT_EQ(rig.flagsChanged(key::leftShift, 0), passes());
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
}

TEST(LettersTest, EscapeCancelsAndIsSwallowed) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.keyDown(key::escape), swallows({reportsIdle()}));
  EXPECT_EQ(rig.keyUp(key::escape), passes());
  EXPECT_EQ(rig.keyDown(key::f), passes());
  EXPECT_EQ(rig.advance(10'000'000), brings()) << "the timeout was not cancelled";
}

TEST(LettersTest, AKeyWithoutALetterEndsTheSequenceAndReachesTheTarget) {
  for (const auto keyCode : {key::space, key::returnKey, key::tab, key::deleteKey, key::leftArrow, key::f1,
                             key::keypad1, std::uint16_t{10}, std::uint16_t{24}, std::uint16_t{0xFFFF}}) {
    TapRig rig(mappingOf({"HF"}));
    rig.tapOption();
    rig.keyDown(key::h);
    EXPECT_EQ(rig.keyDown(keyCode), passes({reportsIdle()})) << keyCode;
    EXPECT_EQ(rig.keyDown(key::f), passes()) << keyCode;
    EXPECT_EQ(rig.advance(10'000'000), brings()) << keyCode;
  }
}

TEST(LettersTest, ASecondLoneOptionTapCancels) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.tapOption(), passes({reportsIdle()}));
  EXPECT_EQ(rig.keyDown(key::f), passes());
  EXPECT_EQ(rig.advance(10'000'000), brings());
  EXPECT_EQ(rig.tapOption(), arms()) << "a third one arms again";
}

TEST(LettersTest, OptionWithAnotherKeyDoesNotCancel) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  EXPECT_EQ(rig.flagsChanged(key::leftOption, option), passes());
  EXPECT_EQ(rig.keyDown(key::a, option), passes());
  EXPECT_EQ(rig.flagsChanged(key::leftOption, 0), passes());
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
}

TEST(LettersTest, ADeadEndIsLoggedSwallowedAndDisarms) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  EXPECT_EQ(rig.keyDown(key::x), swallows({reportsArmed("X"), logs("no sequence X"), reportsIdle()}));
  EXPECT_EQ(rig.keyDown(key::x), passes());
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.keyDown(key::x), swallows({reportsArmed("HX"), logs("no sequence HX"), reportsIdle()}));
  EXPECT_EQ(rig.advance(10'000'000), brings()) << "the timeout was not cancelled";
}

TEST(LettersTest, AnEmptyDocumentIsADeadEnd) {
  TapRig rig(Mapping{});
  EXPECT_EQ(rig.tapOption(), arms());
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H"), logs("no sequence H"), reportsIdle()}));
}

TEST(LettersTest, LeavingTheTargetDisarmsAtTheNextEvent) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.event({platform::event_type::keyDown, key::f, 0, 0}, false), passes({reportsIdle()}));
  EXPECT_EQ(rig.keyDown(key::f), passes());
  EXPECT_EQ(rig.advance(10'000'000), brings());
}

TEST(LettersTest, ArmingStartsAFreshSequence) {
  TapRig rig(mappingOf({"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.tapOption();
  rig.tapOption();
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
}

}  // namespace
}  // namespace keyvora::testing
