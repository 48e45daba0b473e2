#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

Mapping waiting(std::optional<std::int64_t> milliseconds, const std::vector<std::string>& keys) {
  auto mapping = mappingOf(keys);
  mapping.timeoutMilliseconds = milliseconds;
  return mapping;
}

/// A time within a document's timeout and the end of the timeout, in microseconds.
struct Case {
  const char* what;
  std::optional<std::int64_t> milliseconds;
  std::optional<std::int64_t> stillWaitsAt;
  std::int64_t endsAt;

  friend void PrintTo(const Case& row, std::ostream* out) { *out << row.what; }
};

class TimeoutTest : public ::testing::TestWithParam<Case> {
 protected:
  /// Advances the clock to the end and returns what happens there; nothing may happen before.
  static StepResult atTheEnd(TapRig& rig) {
    const auto& row = GetParam();
    if (row.stillWaitsAt) {
      EXPECT_EQ(rig.advance(*row.stillWaitsAt), brings());
    }
    return rig.advance(row.endsAt - row.stillWaitsAt.value_or(0));
  }
};

TEST_P(TimeoutTest, AnAmbiguousSequenceFiresWhenTheTimeIsUp) {
  TapRig rig(waiting(GetParam().milliseconds, {"H", "HF"}));
  rig.tapOption();
  EXPECT_EQ(rig.keyDown(key::h), swallows({reportsArmed("H")}));
  EXPECT_EQ(atTheEnd(rig), brings(firing("H")));
  EXPECT_EQ(rig.advance(10'000'000), brings()) << "fired twice";
}

TEST_P(TimeoutTest, AnUnfinishedSequenceEndsSilentlyWhenTheTimeIsUp) {
  TapRig rig(waiting(GetParam().milliseconds, {"HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(atTheEnd(rig), brings({reportsIdle()}));
  EXPECT_EQ(rig.keyDown(key::f), passes());
}

INSTANTIATE_TEST_SUITE_P(
    Table, TimeoutTest,
    ::testing::Values(Case{"absent", {}, 1'499'999, 1'500'000}, Case{"quarter second", 250, 249'999, 250'000},
                      Case{"one", 1, 999, 1'000}, Case{"an hour", 3'600'000, 3'599'999'999, 3'600'000'000},
                      Case{"zero", 0, {}, 0}, Case{"negative", -5, {}, 0},
                      Case{"the least", std::numeric_limits<std::int64_t>::min(), {}, 0}),
    [](const auto& row) { return testName(row.param.what); });

TEST(TimeoutTest, TheLongestTimeoutWaits) {
  TapRig rig(waiting(std::numeric_limits<std::int64_t>::max(), {"H", "HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  EXPECT_EQ(rig.advance(1'000'000'000'000), brings());
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF"), reportsIdle(), types("tHF", "HF  nHF")}));
}

TEST(TimeoutTest, AnotherLetterContinuesTheSequence) {
  TapRig rig(waiting(1000, {"HF", "HFC", "HFCA"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.advance(900'000);
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF")}));
  EXPECT_EQ(rig.advance(900'000), brings()) << "the first letter's timeout was not cancelled";
  EXPECT_EQ(rig.keyDown(key::c), swallows({reportsArmed("HFC")}));
  EXPECT_EQ(rig.advance(999'999), brings());
  EXPECT_EQ(rig.advance(1), brings(firing("HFC")));
}

TEST(TimeoutTest, AFinishedSequenceDoesNotWait) {
  TapRig rig(mappingOf({"HF", "HFC"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.keyDown(key::f);
  EXPECT_EQ(rig.keyDown(key::c), swallows({reportsArmed("HFC"), reportsIdle(), types("tHFC", "HFC  nHFC")}));
  EXPECT_EQ(rig.advance(10'000'000), brings()) << "the shorter one fired too";
}

TEST(TimeoutTest, AReloadDoesNotChangeWhatWaits) {
  TapRig rig(waiting(1000, {"H", "HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.reload(waiting(5000, {"X"}));
  EXPECT_EQ(rig.advance(999'999), brings());
  EXPECT_EQ(rig.advance(1), brings(firing("H")));
}

TEST(TimeoutTest, TheTimeIsThatOfTheDocumentAtTheLetter) {
  TapRig rig(waiting(1000, {"H", "HF", "HFC"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.reload(waiting(200, {"HF", "HFC"}));
  rig.keyDown(key::f);
  EXPECT_EQ(rig.advance(199'999), brings());
  EXPECT_EQ(rig.advance(1), brings(firing("HF")));
}

TEST(TimeoutTest, WaitsWhileOurOwnMenuIsOpen) {
  TapRig rig(waiting(1000, {"H", "HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.trackMenu(true);
  EXPECT_EQ(rig.advance(60'000'000), brings());
  EXPECT_EQ(rig.trackMenu(false), brings());
  EXPECT_EQ(rig.advance(0), brings(firing("H")));
}

TEST(TimeoutTest, KeysStillCountWhileOurOwnMenuIsOpen) {
  TapRig rig(waiting(1000, {"H", "HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.trackMenu(true);
  EXPECT_EQ(rig.advance(60'000'000), brings());
  EXPECT_EQ(rig.keyDown(key::f), swallows({reportsArmed("HF"), reportsIdle(), types("tHF", "HF  nHF")}));
  rig.trackMenu(false);
  EXPECT_EQ(rig.advance(60'000'000), brings());
}

TEST(TimeoutTest, ATapThatIsGoneDoesNothing) {
  TapRig rig(waiting(1000, {"H", "HF"}));
  rig.tapOption();
  rig.keyDown(key::h);
  rig.destroyTap();
  EXPECT_EQ(rig.advance(10'000'000), brings());
  EXPECT_EQ(rig.host().mainLoop.pending(), 0U);
}

TEST(TimeoutTest, NothingIsPendingWhileIdle) {
  TapRig rig(waiting(1000, {"HF", "HFC"}));
  EXPECT_EQ(rig.host().mainLoop.pending(), 0U);
  rig.tapOption();
  EXPECT_EQ(rig.host().mainLoop.pending(), 0U);
  rig.keyDown(key::h);
  EXPECT_EQ(rig.host().mainLoop.pending(), 1U);
  rig.keyDown(key::f);
  EXPECT_EQ(rig.host().mainLoop.pending(), 1U);
  rig.keyDown(key::escape);
  EXPECT_EQ(rig.host().mainLoop.pending(), 0U);
}

}  // namespace
}  // namespace keyvora::testing
