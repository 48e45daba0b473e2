// The effect of choosing a row, by title and by key letter.

#include "shell_test.h"

namespace keyvora {
namespace {

using platform::LoginStatus;
using simulated::Call;
using simulated::TraceEntry;
using simulated::trace::Activated;
using simulated::trace::AddressOpened;
using simulated::trace::Console;
using simulated::trace::Exited;
using simulated::trace::FileOpened;
using simulated::trace::LoginChanged;
using simulated::trace::MenuShown;
using simulated::trace::PolicySet;
using simulated::trace::UpdaterCalled;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::VariantWith;

class MenuCommandsTest : public ShellTest {
 protected:
  MenuCommandsTest() {
    launch();
    host.trace.clear();
  }
};

TEST_F(MenuCommandsTest, EditOpensTheUsersFile) {
  host.statusBar.choose("Edit mappings.json");
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(FileOpened{mappingsPath})));
}

TEST_F(MenuCommandsTest, ReloadReadsTheFileAgainAndRebuildsTheMenu) {
  host.statusBar.choose("Reload mappings");
  EXPECT_THAT(
      host.trace.entries(),
      ElementsAre(VariantWith<MenuShown>(_), TraceEntry(Console{"keyvora: mappings reloaded, 2 sequences"})));
}

TEST_F(MenuCommandsTest, AFailedReloadIsOneLine) {
  host.files.write(mappingsPath, "{");
  host.statusBar.choose("Reload mappings");
  EXPECT_THAT(host.trace.logged(), ElementsAre("mappings.json not loaded, keeping the last good one: " +
                                               *MappingStore::shared().lastError()));
}

TEST_F(MenuCommandsTest, AFailedReloadOfAChangedFileShowsInTheNextMenuAndNotInTheOpenOne) {
  host.mainLoop.menuTracking = true;
  const auto shown = rows();
  host.files.write(mappingsPath, "{");
  host.advance(0.2);
  ASSERT_TRUE(MappingStore::shared().lastError());
  const auto error = *MappingStore::shared().lastError();
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(
                  Console{"keyvora: mappings.json not loaded, keeping the last good one: " + error})));
  EXPECT_EQ(rows(), shown) << "the open menu stays as it is";
  EXPECT_EQ(MappingStore::shared().mapping().sequences.size(), 2U);

  host.mainLoop.menuTracking = false;
  host.statusBar.choose("Launch at Login");  // rebuilds the menu
  EXPECT_EQ(rows().at(1), "• mappings.json: " + error);

  host.files.write(mappingsPath, oneSequence);
  host.advance(0.2);
  EXPECT_EQ(statusLine(), "1 sequences, ready");
  EXPECT_EQ(rows().at(1), "-") << "a good document takes the error away";
}

TEST_F(MenuCommandsTest, AccessibilitySettingsOpenWithoutAPrompt) {
  host.statusBar.choose("Open Accessibility settings");
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(AddressOpened{
                  "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"})));
}

TEST_F(MenuCommandsTest, ShowLogOpensTheLog) {
  host.statusBar.choose("Show log");
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(FileOpened{logPath})));
}

TEST_F(MenuCommandsTest, AFileThatCannotBeOpenedIsNobodysBusinessHere) {
  host.failures.always(Call::openFile);
  host.statusBar.choose("Edit mappings.json");
  host.statusBar.choose("Show log");
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(MenuCommandsTest, LaunchAtLoginRegistersAndThenTakesItBack) {
  host.statusBar.choose("Launch at Login");
  EXPECT_THAT(host.trace.take(), ElementsAre(TraceEntry(LoginChanged{true}), VariantWith<MenuShown>(_)));
  EXPECT_EQ(rows().at(7), "✓ Launch at Login");

  host.statusBar.choose("Launch at Login");
  EXPECT_THAT(host.trace.take(), ElementsAre(TraceEntry(LoginChanged{false}), VariantWith<MenuShown>(_)));
  EXPECT_EQ(rows().at(7), "Launch at Login");
}

TEST_F(MenuCommandsTest, ARefusedRegistrationIsLoggedAndTheMenuShowsTheTruth) {
  host.failures.always(Call::registerProgram);
  host.statusBar.choose("Launch at Login");
  EXPECT_THAT(host.trace.take(),
              ElementsAre(TraceEntry(LoginChanged{true}),
                          TraceEntry(Console{"keyvora: login item register failed: Operation not permitted"}),
                          VariantWith<MenuShown>(_)));
  EXPECT_EQ(rows().at(7), "Launch at Login");
}

TEST_F(MenuCommandsTest, ARefusedRemovalKeepsTheCheckMark) {
  host.statusBar.choose("Launch at Login");
  host.failures.always(Call::unregisterProgram);
  host.statusBar.choose("Launch at Login");
  EXPECT_THAT(host.trace.logged(), ElementsAre("login item unregister failed: Operation not permitted"));
  EXPECT_EQ(rows().at(7), "✓ Launch at Login");
}

TEST_F(MenuCommandsTest, AnItemThatWaitsForApprovalIsRegisteredAgain) {
  host.loginService.state = LoginStatus::requiresApproval;
  host.statusBar.choose("Launch at Login");
  EXPECT_THAT(host.trace.of<LoginChanged>(), ElementsAre(LoginChanged{true}));
}

TEST_F(MenuCommandsTest, CheckForUpdatesComesToTheFrontFirst) {
  host.statusBar.choose("Check for Updates…");
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(Activated{}), TraceEntry(UpdaterCalled{UpdaterCalled::What::checked})));
}

TEST_F(MenuCommandsTest, OnlyQuitIsTheSystemsToCarryOut) {
  for (const auto& row : host.statusBar.menu().rows) {
    EXPECT_EQ(row.endsApplication, row.title == "Quit keyvora") << row.title;
  }
}

TEST_F(MenuCommandsTest, ACheckFromAnotherApplicationComesToTheFrontUntilItEnds) {
  host.applications.front = "com.apple.finder";
  host.statusBar.choose("Check for Updates…");
  auto& framework = *host.updates.delegate();
  framework.didFindValidUpdate({"1.3", "57"});
  framework.willHandleShowingUpdate(true, {"1.3", "57"});
  framework.willFinishUpdateSession();
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(Activated{}), TraceEntry(UpdaterCalled{UpdaterCalled::What::checked}),
                          TraceEntry(PolicySet{platform::ActivationPolicy::regular}), TraceEntry(Activated{}),
                          TraceEntry(PolicySet{platform::ActivationPolicy::accessory})));
}

TEST_F(MenuCommandsTest, QuitEndsTheApplicationNormally) {
  host.statusBar.choose("Quit keyvora");
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(Exited{0})));
}

TEST_F(MenuCommandsTest, FourRowsHaveKeyLetters) {
  EXPECT_TRUE(host.statusBar.pressKey('e'));
  EXPECT_TRUE(host.statusBar.pressKey('l'));
  EXPECT_THAT(host.trace.take(),
              ElementsAre(TraceEntry(FileOpened{mappingsPath}), TraceEntry(FileOpened{logPath})));
  EXPECT_TRUE(host.statusBar.pressKey('r'));
  EXPECT_THAT(host.trace.logged(), ElementsAre("mappings reloaded, 2 sequences"));
  host.trace.clear();
  EXPECT_TRUE(host.statusBar.pressKey('q'));
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(Exited{0})));
  for (const char other : std::string("abcdfghijkmnopstuvwxyz"))
    EXPECT_FALSE(host.statusBar.pressKey(other)) << other;
}

}  // namespace
}  // namespace keyvora
