// The status menu's rows in each state of the program.

#include "shell_test.h"

namespace keyvora {
namespace {

using platform::LoginStatus;
using testing::ElementsAre;

class MenuRowsTest : public ShellTest {
 protected:
  void breakDocument() {
    host.files.write(mappingsPath, "{");
    host.statusBar.choose("Reload mappings");
  }
};

TEST_F(MenuRowsTest, AtLaunchWithTheGrant) {
  launch();
  EXPECT_THAT(rows(), ElementsAre("• Accessibility granted, installing the tap",  //
                                  "-",                                            //
                                  "Edit mappings.json (e)",                       //
                                  "Reload mappings (r)",                          //
                                  "Open Accessibility settings",                  //
                                  "Show log (l)",                                 //
                                  "-",                                            //
                                  "Launch at Login",                              //
                                  "Check for Updates…",                           //
                                  "• keyvora 1.2",                                //
                                  "-",                                            //
                                  "Quit keyvora (q)"));
}

TEST_F(MenuRowsTest, WithoutTheGrantOnlyTheFirstRowDiffers) {
  launch();
  auto expected = rows();
  expected.front() = "• Accessibility not granted";
  withholdTrust();
  launch();
  EXPECT_EQ(rows(), expected);
}

TEST_F(MenuRowsTest, WithTheTapInstalledTheFirstRowCountsTheSequences) {
  launch();
  host.statusBar.choose("Reload mappings");
  EXPECT_EQ(statusLine(), "2 sequences, ready");
}

TEST_F(MenuRowsTest, OneSequenceHasNoSingular) {
  launch();
  host.files.write(mappingsPath, oneSequence);
  host.advance(0.2);
  EXPECT_EQ(statusLine(), "1 sequences, ready");
}

TEST_F(MenuRowsTest, AWithdrawnGrantShowsAtTheNextRebuild) {
  launch();
  host.statusBar.choose("Reload mappings");
  host.accessibility.trusted = false;
  EXPECT_EQ(statusLine(), "2 sequences, ready");
  host.statusBar.choose("Reload mappings");
  EXPECT_EQ(statusLine(), "Accessibility not granted");
}

TEST_F(MenuRowsTest, AFailedReloadRebuildsNothing) {
  launch();
  const auto before = rows();
  breakDocument();
  EXPECT_TRUE(MappingStore::shared().lastError().has_value());
  EXPECT_EQ(menusShown(), 1U);
  EXPECT_EQ(rows(), before);
}

TEST_F(MenuRowsTest, TheErrorShowsInTheSecondRowFromTheNextRebuildUntilAGoodReload) {
  launch();
  breakDocument();
  host.statusBar.choose("Launch at Login");
  const std::string error = "• mappings.json: " + *MappingStore::shared().lastError();
  EXPECT_THAT(rows(),
              ElementsAre("• 2 sequences, ready", error, "-", "Edit mappings.json (e)", "Reload mappings (r)",
                          "Open Accessibility settings", "Show log (l)", "-", "✓ Launch at Login",
                          "Check for Updates…", "• keyvora 1.2", "-", "Quit keyvora (q)"));
  host.files.write(mappingsPath, oneSequence);
  host.statusBar.choose("Reload mappings");
  EXPECT_THAT(rows(),
              ElementsAre("• 1 sequences, ready", "-", "Edit mappings.json (e)", "Reload mappings (r)",
                          "Open Accessibility settings", "Show log (l)", "-", "✓ Launch at Login",
                          "Check for Updates…", "• keyvora 1.2", "-", "Quit keyvora (q)"));
}

TEST_F(MenuRowsTest, AChangeOfTheFileRebuildsLikeTheCommand) {
  launch();
  host.files.saveByRename(mappingsPath, oneSequence);
  host.advance(0.19);
  EXPECT_EQ(menusShown(), 1U);
  host.advance(0.01);
  EXPECT_EQ(menusShown(), 2U);
  EXPECT_EQ(statusLine(), "1 sequences, ready");
}

TEST_F(MenuRowsTest, ABundleWithoutAVersionIsDev) {
  host.bundles.mainBundle.information = {};
  launch();
  EXPECT_THAT(rows(), testing::Contains("• keyvora dev"));
}

TEST_F(MenuRowsTest, OnlyAnEnabledLoginItemIsChecked) {
  for (const auto& [status, row] : {std::pair(LoginStatus::notRegistered, "Launch at Login"),
                                    std::pair(LoginStatus::enabled, "✓ Launch at Login"),
                                    std::pair(LoginStatus::requiresApproval, "Launch at Login"),
                                    std::pair(LoginStatus::notFound, "Launch at Login")}) {
    host.loginService.state = status;
    launch();
    EXPECT_EQ(rows().at(7), row) << static_cast<int>(status);
  }
}

TEST_F(MenuRowsTest, ABuiltMenuIsASnapshot) {
  launch();
  const auto built = keyvora->menu();
  host.loginService.state = LoginStatus::enabled;
  EXPECT_FALSE(built.rows.at(7).checked);
  EXPECT_TRUE(keyvora->menu().rows.at(7).checked);
}

}  // namespace
}  // namespace keyvora
