// The steps of a check: for a probe, and for a user who asked for it.

#include "updater_test.h"

namespace keyvora::appcast {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string newer = feedOf(itemOf("57",
                                        "<sparkle:shortVersionString>1.3</sparkle:shortVersionString>"
                                        "<description>Better.</description>"
                                        "<link>https://example.org/get</link>"));
const std::string same = feedOf(itemOf("42"));

class ProbeTest : public UpdaterTest {
 protected:
  void probe() {
    start().checkForUpdateInformation();
    host.advance(1);
  }
};

TEST_F(ProbeTest, TellsOfAnUpdate) {
  serve(feedAddress, newer);
  probe();
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml", "found 1.3 (57)"));
  EXPECT_FALSE(updater().isBusy());
}

TEST_F(ProbeTest, WithNoUpdateTellsThatItFoundNoneAndThenThatItStopped) {
  serve(feedAddress, same);
  probe();
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml",
                                  "not found: keyvora 1.2 is the newest version.",
                                  "aborted: keyvora 1.2 is the newest version."));
}

TEST_F(ProbeTest, TellsWhyTheFeedCouldNotBeFetched) {
  serveError(feedAddress, "the server answered with status 404");
  probe();
  EXPECT_THAT(
      take(),
      ElementsAre("fetch https://example.org/feed.xml",
                  "aborted: The update feed could not be fetched: the server answered with status 404."));
}

TEST_F(ProbeTest, TellsWhatIsWrongWithTheFeed) {
  serve(feedAddress, "<html/>");
  probe();
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml",
                                  "aborted: The update feed is malformed: it is not an RSS channel."));
}

TEST_F(ProbeTest, WithoutAFeedItSaysWhereToNameOneOnTheNextPassOfTheLoop) {
  settings.feedAddress = "";
  start().checkForUpdateInformation();
  EXPECT_THAT(take(), IsEmpty());
  host.advance(0);
  EXPECT_THAT(take(), ElementsAre("aborted: No update feed is configured (SUFeedURL in Info.plist)."));
}

TEST_F(ProbeTest, AFeedUnderAReservedNameIsNeverAskedFor) {
  settings.feedAddress = "https://updates.invalid/appcast.xml";
  start().checkForUpdateInformation();
  host.advance(0);
  EXPECT_THAT(take(), ElementsAre("aborted: No update feed is configured (SUFeedURL in Info.plist)."));
}

TEST_F(ProbeTest, LeavesNoTraceInTheHistory) {
  serve(feedAddress, same);
  probe();
  EXPECT_EQ(lastCheck, std::nullopt);
}

TEST_F(ProbeTest, NeedsAStartedUpdater) {
  auto& idle = make();
  idle.checkForUpdateInformation();
  idle.checkForUpdates();
  EXPECT_FALSE(idle.isBusy());
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(ProbeTest, AnotherCheckWhileOneIsUnderWayIsIgnored) {
  serve(feedAddress, newer);
  start().checkForUpdateInformation();
  updater().checkForUpdateInformation();
  host.advance(1);
  EXPECT_THAT(take(), ElementsAre("fetch https://example.org/feed.xml", "found 1.3 (57)"));
}

TEST_F(ProbeTest, AnUpdaterThatIsGoneAnswersNothing) {
  serve(feedAddress, newer);
  start().checkForUpdateInformation();
  destroyUpdater();
  take();
  host.advance(10);
  EXPECT_THAT(take(), IsEmpty());
}

class UserCheckTest : public UpdaterTest {
 protected:
  void check() {
    start().checkForUpdates();
    host.advance(1);
  }
};

TEST_F(UserCheckTest, ShowsAnUpdateWithNotesAndWhereToGetIt) {
  serve(feedAddress, newer);
  check();
  EXPECT_THAT(take(),
              ElementsAre("show checking", "fetch https://example.org/feed.xml", "found 1.3 (57)",
                          "will show", "show update 1.3 over 1.2 at https://example.org/get: Better."));
  EXPECT_TRUE(updater().isBusy());
}

TEST_F(UserCheckTest, AFeedMayTakeHalfAMinuteAndAMebibyte) {
  serve(feedAddress, newer);
  check();
  EXPECT_EQ(lastLimits.time, std::chrono::seconds(30));
  EXPECT_EQ(lastLimits.bytes, 1U << 20);
}

TEST_F(UserCheckTest, ClosingTheWindowEndsTheSession) {
  serve(feedAddress, newer);
  check();
  take();
  choose(Choice::later);
  EXPECT_THAT(take(), ElementsAre("will finish"));
  EXPECT_FALSE(updater().isBusy());
}

TEST_F(UserCheckTest, TheAddressOpensOnRequest) {
  serve(feedAddress, newer);
  check();
  take();
  choose(Choice::open);
  EXPECT_THAT(take(), ElementsAre("open https://example.org/get", "will finish"));
}

TEST_F(UserCheckTest, WithoutAPageTheDownloadIsTheAddress) {
  serve(feedAddress, feedOf(itemOf("57", R"(<enclosure url="k.deb"/>)")));
  check();
  EXPECT_EQ(take().back(), "show update 57 over 1.2 at https://example.org/k.deb: ");
}

TEST_F(UserCheckTest, LinkedNotesAreALinkAndNotFetched) {
  const std::string link = "<sparkle:releaseNotesLink>n.html</sparkle:releaseNotesLink>";
  serve(feedAddress, feedOf(itemOf("57", link + "<description>&lt;p&gt;Better.</description>")));
  check();
  EXPECT_THAT(take(), ElementsAre("show checking", "fetch https://example.org/feed.xml", "found 57 (57)",
                                  "will show", "show update 57 over 1.2 at :  https://example.org/n.html"));
  choose(Choice::later);

  serve(feedAddress, feedOf(itemOf("57", link + "<description>In short</description>")));
  updater().checkForUpdates();
  host.advance(1);
  EXPECT_EQ(take().back(), "show update 57 over 1.2 at : In short https://example.org/n.html");
}

TEST_F(UserCheckTest, NotesOfASecureFeedAreNotFetchedOverHttpEither) {
  const std::string link = "<sparkle:releaseNotesLink>http://example.org/n</sparkle:releaseNotesLink>";
  serve(feedAddress, feedOf(itemOf("57", link)));
  serve("http://example.org/n", "<p>Changed on its way.");
  check();
  host.advance(60);
  EXPECT_THAT(take(), ElementsAre("show checking", "fetch https://example.org/feed.xml", "found 57 (57)",
                                  "will show", "show update 57 over 1.2 at :  http://example.org/n"));
}

TEST_F(UserCheckTest, SaysThatItIsUpToDateBeforeTheDelegateHears) {
  serve(feedAddress, same);
  check();
  EXPECT_THAT(take(), ElementsAre("show checking", "fetch https://example.org/feed.xml",
                                  "show keyvora is up to date: keyvora 1.2 is the newest version."));
  acknowledge();
  EXPECT_THAT(take(), ElementsAre("not found: keyvora 1.2 is the newest version.",
                                  "aborted: keyvora 1.2 is the newest version.", "will finish"));
  EXPECT_FALSE(updater().isBusy());
}

TEST_F(UserCheckTest, SaysWhatWentWrong) {
  serveError(feedAddress, "Could not resolve host: example.org");
  check();
  EXPECT_EQ(take().back(),
            "show keyvora could not look for updates: The update feed could not be fetched: "
            "Could not resolve host: example.org.");
  acknowledge();
  EXPECT_THAT(
      take(),
      ElementsAre("aborted: The update feed could not be fetched: Could not resolve host: example.org.",
                  "will finish"));
}

TEST_F(UserCheckTest, CanBeCancelled) {
  serve(feedAddress, newer);
  start().checkForUpdates();
  take();
  cancel();
  EXPECT_THAT(take(), ElementsAre("will finish"));
  host.advance(10);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(UserCheckTest, CanBeCancelledWithoutAFeedToo) {
  settings.feedAddress = "";
  start().checkForUpdates();
  cancel();
  take();
  host.advance(10);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(UserCheckTest, AskingAgainBringsTheWindowForward) {
  serve(feedAddress, newer);
  check();
  take();
  updater().checkForUpdates();
  EXPECT_THAT(take(), ElementsAre("bring forward"));
}

TEST_F(UserCheckTest, TheUserSeesASkippedVersionAllTheSame) {
  skipped = "57";
  serve(feedAddress, newer);
  check();
  EXPECT_THAT(take(), testing::Contains("will show"));
}

TEST_F(UserCheckTest, AnUpdaterThatEndsTakesItsWindowAway) {
  serve(feedAddress, newer);
  check();
  take();
  destroyUpdater();
  EXPECT_THAT(take(), ElementsAre("close"));
}

}  // namespace
}  // namespace keyvora::appcast
