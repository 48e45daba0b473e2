// Scheduled checks.

#include "updater_test.h"

namespace keyvora::appcast {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ScheduleTest : public UpdaterTest {
 protected:
  ScheduleTest() {
    settings.checksAutomatically = true;
    serve(feedAddress, feedOf(itemOf("42")));
  }

  void serveNewer() { serve(feedAddress, feedOf(itemOf("57"))); }

  /// How many checks ran since the last call.
  std::ptrdiff_t checks() { return std::ranges::count(take(), std::string("fetch ") + feedAddress); }
};

TEST_F(ScheduleTest, TheFirstCheckComesAtOnceAndThenOneADay) {
  start();
  host.advance(1);
  EXPECT_EQ(checks(), 1);
  host.advance(day - 10);
  EXPECT_EQ(checks(), 0);
  host.advance(10);
  EXPECT_EQ(checks(), 1);
  host.advance(10 * day);
  EXPECT_EQ(checks(), 10);
}

TEST_F(ScheduleTest, BetweenChecksOneTimerWaits) {
  start();
  host.advance(10);
  EXPECT_EQ(host.mainLoop.pending(), 1U);
}

TEST_F(ScheduleTest, ACheckOfAnEarlierRunCounts) {
  host.advance(day);
  lastCheck = day / 4;
  start();
  host.advance(day / 4 - 1);
  EXPECT_EQ(checks(), 0);
  host.advance(2);
  EXPECT_EQ(checks(), 1);
}

TEST_F(ScheduleTest, TheIntervalIsTheBundles) {
  settings.checkInterval = std::chrono::hours(2);
  start();
  host.advance(day - 1);
  EXPECT_EQ(checks(), 12);
}

TEST_F(ScheduleTest, NothingRunsWhereTheBundleDoesNotAllowItOrNamesNoFeedOrNothingCanBeShown) {
  settings.checksAutomatically = false;
  start();
  host.advance(3 * day);
  EXPECT_EQ(host.mainLoop.pending(), 0U);

  settings.checksAutomatically = true;
  settings.feedAddress = "";
  start();
  host.advance(3 * day);
  EXPECT_EQ(host.mainLoop.pending(), 0U);

  settings.feedAddress = feedAddress;
  hasWindows = false;
  start();
  host.advance(3 * day);
  EXPECT_EQ(host.mainLoop.pending(), 0U);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(ScheduleTest, StartingTwiceChangesNothing) {
  start().startUpdater();
  host.advance(1);
  EXPECT_EQ(checks(), 1);
}

TEST_F(ScheduleTest, WithNoUpdateNothingIsShown) {
  start();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml",
                                  "not found: keyvora 1.2 is the newest version.",
                                  "aborted: keyvora 1.2 is the newest version."));
}

TEST_F(ScheduleTest, AFailureIsNotShownAndTheNextDayIsTriedAgain) {
  serveError(feedAddress, "the network is down");
  start();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml",
                                  "aborted: The update feed could not be fetched: the network is down."));
  host.advance(day);
  EXPECT_EQ(checks(), 1);
}

TEST_F(ScheduleTest, AnUpdateIsShown) {
  serveNewer();
  start();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml", "found 57 (57)", "will show",
                                  "show update 57 over 1.2 at : "));
}

TEST_F(ScheduleTest, WhileAnUpdateIsShownNoCheckRunsAndOneIsDueAfterwards) {
  serveNewer();
  start();
  host.advance(1);
  take();
  host.advance(5 * day);
  EXPECT_EQ(checks(), 0);
  choose(Choice::later);
  take();
  host.advance(1);
  EXPECT_EQ(checks(), 1);
}

TEST_F(ScheduleTest, ADelegateMayShowTheUpdateItself) {
  delegateShows = false;
  serveNewer();
  start();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml", "found 57 (57)", "will not show"));
  EXPECT_FALSE(updater().isBusy());
  host.advance(day);
  EXPECT_EQ(checks(), 1);
}

TEST_F(ScheduleTest, ASkippedVersionIsNotShownAgainButALaterOneIs) {
  serveNewer();
  start();
  host.advance(1);
  choose(Choice::skip);
  EXPECT_EQ(skipped, "57");
  take();
  host.advance(day + 1);
  EXPECT_THAT(take(), testing::Not(testing::Contains("will show")));
  serve(feedAddress, feedOf(itemOf("58")));
  host.advance(day);
  EXPECT_THAT(take(), testing::Contains("will show"));
}

TEST_F(ScheduleTest, AUserWhoAsksTakesOverACheckThatIsUnderWay) {
  start();
  host.advance(0);
  updater().checkForUpdates();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml", "show checking",
                                  "show keyvora is up to date: keyvora 1.2 is the newest version."));
}

TEST_F(ScheduleTest, AProbeHoldsTheScheduledCheckBack) {
  start().checkForUpdateInformation();
  host.advance(0.5);
  EXPECT_EQ(checks(), 1);
  host.advance(0.5);
  EXPECT_EQ(checks(), 1);
}

}  // namespace
}  // namespace keyvora::appcast
