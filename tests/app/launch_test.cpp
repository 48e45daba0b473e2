#include <thread>

#include "platform/key_code.h"
#include "shell_test.h"

namespace keyvora {
namespace {

using simulated::TraceEntry;
using simulated::trace::AskedForTrust;
using simulated::trace::Console;
using simulated::trace::MenuShown;
using simulated::trace::TapEnabled;
using simulated::trace::TitleShown;
using simulated::trace::UpdaterCalled;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::VariantWith;

namespace key = platform::key_code;

class LaunchTest : public ShellTest {};

TEST_F(LaunchTest, ConstructionDoesNothing) {
  keyvora = Keyvora::create();
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  EXPECT_FALSE(host.statusBar.hasItem());
}

TEST_F(LaunchTest, HappensInOrder) {
  launch();
  EXPECT_THAT(
      host.trace.entries(),
      ElementsAre(TraceEntry(TitleShown{"⌥"}), VariantWith<MenuShown>(testing::_),
                  TraceEntry(Console{"keyvora: launch 1.2 (42)"}),
                  TraceEntry(Console{"keyvora: accessibility granted"}), TraceEntry(TapEnabled{}),
                  TraceEntry(Console{"keyvora: tap installed, 2 sequences, log at " + std::string(logPath)}),
                  TraceEntry(UpdaterCalled{UpdaterCalled::What::created}),
                  TraceEntry(UpdaterCalled{UpdaterCalled::What::started})));
}

TEST_F(LaunchTest, WithTheGrantItInstallsTheTapAndNeedsNoTimer) {
  launch();
  EXPECT_TRUE(KeySequenceTap::shared().installed());
  EXPECT_EQ(host.failures.count(simulated::Call::schedule), 0U);
  EXPECT_EQ(host.failures.count(simulated::Call::isTrustedPrompting), 1U);
}

TEST_F(LaunchTest, WithoutTheGrantItSaysSoAndWaits) {
  withholdTrust();
  launch();
  EXPECT_THAT(host.trace.logged(), ElementsAre("launch 1.2 (42)", "accessibility not granted yet",
                                               "tap not installed yet: waiting for the Accessibility grant"));
  EXPECT_FALSE(KeySequenceTap::shared().installed());
  EXPECT_EQ(host.failures.count(simulated::Call::schedule), 1U);
  EXPECT_THAT(host.trace.of<AskedForTrust>(), ElementsAre(AskedForTrust{}));
}

TEST_F(LaunchTest, TheLaunchIsLoggedBeforeTheUserIsAskedForTheGrant) {
  withholdTrust();
  launch();
  EXPECT_THAT(
      host.trace.entries(),
      ElementsAre(TraceEntry(TitleShown{"⌥"}), VariantWith<MenuShown>(testing::_),
                  TraceEntry(Console{"keyvora: launch 1.2 (42)"}), TraceEntry(AskedForTrust{}),
                  TraceEntry(Console{"keyvora: accessibility not granted yet"}),
                  TraceEntry(Console{"keyvora: tap not installed yet: waiting for the Accessibility grant"}),
                  TraceEntry(UpdaterCalled{UpdaterCalled::What::created}),
                  TraceEntry(UpdaterCalled{UpdaterCalled::What::started})));
}

TEST_F(LaunchTest, EverythingIsConnectedWhenTheUpdaterStarts) {
  int started = 0;
  host.failures.onCall = [&](simulated::Call call) {
    if (call != simulated::Call::startUpdater) return;
    ++started;
    EXPECT_TRUE(MappingStore::shared().onReload);
    EXPECT_TRUE(KeySequenceTap::shared().onStateChange);
  };
  launch();
  EXPECT_EQ(started, 1);
}

TEST_F(LaunchTest, TheTapIsTriedWhateverTheGrant) {
  host.failures.always(simulated::Call::isTrustedPrompting);
  launch();
  EXPECT_THAT(host.trace.logged(), ElementsAre("launch 1.2 (42)", "accessibility not granted yet",
                                               "tap installed, 2 sequences, log at " + std::string(logPath)));
}

TEST_F(LaunchTest, ABundleWithoutVersionsIsADevelopmentBuild) {
  host.bundles.mainBundle.information = {};
  launch();
  EXPECT_EQ(host.trace.logged().front(), "launch dev (0)");
}

TEST_F(LaunchTest, AnEmptyDocumentCountsNone) {
  host.files.write(mappingsPath, R"({"version": 1, "tabs": {}, "sequences": []})");
  launch();
  EXPECT_EQ(host.trace.logged().back(), "tap installed, 0 sequences, log at " + std::string(logPath));
}

TEST_F(LaunchTest, ABrokenDocumentIsSilentAndCountsNone) {
  host.files.write(mappingsPath, "{");
  launch();
  EXPECT_THAT(host.trace.logged(), ElementsAre("launch 1.2 (42)", "accessibility granted",
                                               "tap installed, 0 sequences, log at " + std::string(logPath)));
}

TEST_F(LaunchTest, ArmingShowsTheLettersAfterABlank) {
  launch();
  host.applications.front = "com.microsoft.Excel";
  host.keyboard.tapOption();
  EXPECT_EQ(host.statusBar.title(), "⌥ ");
  host.keyboard.type(key::h);
  EXPECT_EQ(host.statusBar.title(), "⌥ H");
  host.keyboard.type(key::escape);
  EXPECT_EQ(host.statusBar.title(), "⌥");
}

TEST_F(LaunchTest, WhatIsTypedAtTheHardwareLevelPassesOurOwnTap) {
  launch();
  host.applications.front = "com.microsoft.Excel";  // in front but not running: it is about to quit
  host.keyboard.tapOption();
  host.keyboard.type(key::h);
  host.keyboard.type(key::b);
  host.keyboard.tapOption();  // armed again, while the program types
  host.trace.clear();
  host.advance(2);
  std::vector<platform::Verdict> verdicts;
  for (const auto& event : host.trace.of<simulated::trace::Tapped>()) verdicts.push_back(event.verdict);
  EXPECT_EQ(verdicts, std::vector<platform::Verdict>(8, platform::Verdict::pass))
      << "four of the lead-in, two a key";
  EXPECT_EQ(host.statusBar.title(), "⌥ ") << "still armed, and no letter counted";
  EXPECT_THAT(host.trace.logged(), ElementsAre("H B  Borders (keytips HB)"));
}

TEST_F(LaunchTest, WhatIsFoundIsLoggedAfterTheTapsLine) {
  host.diagnosis.found = {{"Sticky Keys", "They are on.", "Switch them off.", true},
                          {"Wayland", "Some work.", "Start it otherwise.", false},
                          {"Wayland", "Some work.", "Start it otherwise.", false}};
  launch();
  EXPECT_EQ(host.diagnosis.document, mappingsPath);
  EXPECT_THAT(host.trace.logged(), ElementsAre("launch 1.2 (42)", "accessibility granted",
                                               "tap installed, 2 sequences, log at " + std::string(logPath),
                                               "Sticky Keys: They are on. Switch them off.",
                                               "Wayland: Some work. Start it otherwise."));
}

TEST_F(LaunchTest, WhatIsFoundIsLoggedWhenTheDesktopIsUp) {
  host.diagnosis.found = {{"no window manager", "Nothing starts.", "Start one.", true}};
  host.diagnosis.desktopIsUp = false;
  launch();
  EXPECT_EQ(host.trace.logged().back(), "tap installed, 2 sequences, log at " + std::string(logPath));
  host.diagnosis.found = {{"Sticky Keys", "They are on.", "Switch them off.", true}};
  host.diagnosis.startDesktop();
  EXPECT_EQ(host.trace.logged().back(), "Sticky Keys: They are on. Switch them off.");
  EXPECT_EQ(host.trace.logged().size(), 4U);
}

TEST_F(LaunchTest, WhatIsFoundIsLoggedWithoutATapToo) {
  withholdTrust();
  host.diagnosis.found = {{"Sticky Keys", "They are on.", "Switch them off.", true}};
  launch();
  EXPECT_EQ(host.trace.logged().back(), "Sticky Keys: They are on. Switch them off.");
}

TEST_F(LaunchTest, ThatNothingShowsTheItemIsLogged) {
  launch();
  ASSERT_TRUE(host.statusBar.onUnseen);
  host.statusBar.onUnseen("no tray: start one");
  EXPECT_EQ(host.trace.logged().back(), "no tray: start one");
}

TEST_F(LaunchTest, StatesAreShownAsTheTapGivesThem) {
  launch();
  const auto& report = KeySequenceTap::shared().onStateChange;
  const auto menus = menusShown();
  report(true, "abc");
  EXPECT_EQ(host.statusBar.title(), "⌥ abc");
  report(false, "abc");
  EXPECT_EQ(host.statusBar.title(), "⌥");
  EXPECT_EQ(menusShown(), menus);
}

TEST_F(LaunchTest, AnItemWithoutAButtonIsLeftAloneAndStillHasItsMenu) {
  host.statusBar.givesButton = false;
  launch();
  KeySequenceTap::shared().onStateChange(true, "H");
  EXPECT_THAT(host.trace.of<TitleShown>(), IsEmpty());
  EXPECT_EQ(menusShown(), 1U);
}

TEST_F(LaunchTest, CallbacksThatOutliveTheDelegateDoNothing) {
  launch();
  const auto chosen = host.statusBar.menu().rows;
  keyvora.reset();
  EXPECT_FALSE(host.statusBar.hasItem());
  host.trace.clear();
  KeySequenceTap::shared().onStateChange(true, "H");
  MappingStore::shared().onReload(MappingStore::shared().mapping());
  for (const auto& row : chosen) {
    if (row.isEnabled() && row.title != "Quit keyvora") row.action();
  }
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(LaunchTest, TheTapReadsReloadedDocumentsWithoutTheDelegate) {
  launch();
  keyvora.reset();
  host.files.write(mappingsPath, oneSequence);
  host.advance(0.2);
  EXPECT_EQ(MappingStore::shared().mapping().sequences.size(), 1U);
}

TEST(LaunchDeathTest, AMenuThatIsRebuiltBeforeThereIsAnItemIsFatal) {
  const auto toggleTooEarly = [] {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    const auto keyvora = Keyvora::create();
    for (const auto& row : keyvora->menu().rows) {
      if (row.title == "Launch at Login") row.action();
    }
  };
  EXPECT_DEATH(toggleTooEarly(), "Fatal error: the status item is shown before it was made");
}

TEST(LaunchDeathTest, ADelegateMadeOffTheMainThreadIsFatal) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto createElsewhere = [] {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    std::thread([] { Keyvora::create(); }).join();
  };
  EXPECT_DEATH(createElsewhere(), "Fatal error: Keyvora::create must run on the main thread");
}

}  // namespace
}  // namespace keyvora
