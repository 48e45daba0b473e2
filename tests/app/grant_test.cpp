// Polling for the Accessibility permission.

#include "shell_test.h"

namespace keyvora {
namespace {

using simulated::Call;
using simulated::TraceEntry;
using simulated::trace::Console;
using simulated::trace::MenuShown;
using simulated::trace::TapEnabled;
using testing::ElementsAre;
using testing::IsEmpty;

class GrantTest : public ShellTest {
 protected:
  GrantTest() {
    withholdTrust();
    launch();
    host.trace.clear();
  }

  void giveTrust() {
    host.accessibility.trusted = true;
    host.failures.clear();
  }

  std::uint64_t trustAsked() { return host.failures.count(Call::isTrusted); }
};

TEST_F(GrantTest, IsAskedForEveryTwoSecondsWithoutPromptingAgain) {
  const auto before = trustAsked();
  host.advance(1.9);
  EXPECT_EQ(trustAsked(), before);
  host.advance(0.1);
  EXPECT_EQ(trustAsked(), before + 1);
  host.advance(20.0);
  EXPECT_EQ(trustAsked(), before + 11);
  EXPECT_EQ(host.failures.count(Call::isTrustedPrompting), 1U);
  EXPECT_EQ(host.failures.count(Call::createTap), 1U);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(GrantTest, InstallsTheTapWithinTwoSecondsAndRebuildsTheMenu) {
  EXPECT_EQ(statusLine(), "Accessibility not granted");
  host.advance(3.0);
  giveTrust();
  host.advance(0.9);
  EXPECT_FALSE(KeySequenceTap::shared().installed());
  host.advance(0.1);
  EXPECT_TRUE(KeySequenceTap::shared().installed());
  EXPECT_THAT(host.trace.logged(), ElementsAre("accessibility granted, tap installed, 2 sequences"));
  EXPECT_EQ(statusLine(), "2 sequences, ready");
  EXPECT_EQ(menusShown(), 1U);
}

TEST_F(GrantTest, IsLoggedBeforeTheMenuIsRebuilt) {
  giveTrust();
  host.advance(2.0);
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(TapEnabled{}),
                          TraceEntry(Console{"keyvora: accessibility granted, tap installed, 2 sequences"}),
                          testing::VariantWith<MenuShown>(testing::_)));
}

TEST_F(GrantTest, WhatIsFoundOnlyNowIsLoggedAfterItsLine) {
  host.diagnosis.found = {{"Sticky Keys", "They are on.", "Switch them off.", true}};
  giveTrust();
  host.advance(2.0);
  EXPECT_THAT(host.trace.logged(), ElementsAre("accessibility granted, tap installed, 2 sequences",
                                               "Sticky Keys: They are on. Switch them off."));
}

TEST_F(GrantTest, IsNeverAskedForAgainOnceTheTapIsInstalled) {
  giveTrust();
  host.advance(2.0);
  const auto before = trustAsked();
  host.advance(60.0);
  EXPECT_EQ(trustAsked(), before);
  EXPECT_EQ(host.mainLoop.pending(), 0U);
}

TEST_F(GrantTest, WithAnInstallationThatFailsThePollGoesOnWithoutAWord) {
  giveTrust();
  host.failures.always(Call::createTap);
  const auto before = host.failures.count(Call::createTap);
  host.advance(20.0);
  EXPECT_EQ(host.failures.count(Call::createTap), before + 10);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  EXPECT_EQ(statusLine(), "Accessibility not granted");

  host.failures.clear();
  host.advance(2.0);
  EXPECT_THAT(host.trace.logged(), ElementsAre("accessibility granted, tap installed, 2 sequences"));
}

TEST_F(GrantTest, CountsTheDocumentInForceThen) {
  host.files.write(mappingsPath, oneSequence);
  host.advance(1.0);
  giveTrust();
  host.advance(1.0);
  EXPECT_THAT(host.trace.logged(), ElementsAre("mappings reloaded, 1 sequences",
                                               "accessibility granted, tap installed, 1 sequences"));
}

TEST_F(GrantTest, InstallsTheTapEvenWhenTheDelegateIsGone) {
  keyvora.reset();
  host.trace.clear();
  giveTrust();
  host.advance(2.0);
  EXPECT_TRUE(KeySequenceTap::shared().installed());
  EXPECT_THAT(host.trace.logged(), ElementsAre("accessibility granted, tap installed, 2 sequences"));
  EXPECT_EQ(menusShown(), 0U);
  EXPECT_EQ(host.mainLoop.pending(), 0U);
}

TEST_F(GrantTest, WaitsWhileOurOwnMenuIsOpen) {
  giveTrust();
  host.mainLoop.menuTracking = true;
  host.advance(10.0);
  EXPECT_FALSE(KeySequenceTap::shared().installed());
  host.mainLoop.menuTracking = false;
  host.advance(0.0);
  EXPECT_TRUE(KeySequenceTap::shared().installed());
}

}  // namespace
}  // namespace keyvora
