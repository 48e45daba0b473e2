#include "hosts/simulated/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

/// Parts of the simulated host that are too small for their own test file.
namespace keyvora::simulated {
namespace {

using platform::MenuRow;
using testing::ElementsAre;
using testing::IsEmpty;

struct SimulatedHostTest : testing::Test {
  Host host;

  MenuRow row(const std::string& title, char key) {
    return {.title = title, .keyEquivalent = key, .action = [this, title] { host.trace.note(title); }};
  }

  static MenuRow disabled(std::string title, char key = 0) {
    MenuRow made;
    made.title = std::move(title);
    made.keyEquivalent = key;
    return made;
  }
};

TEST_F(SimulatedHostTest, ElementsAnswerWhatATestGaveThem) {
  auto& accessibility = host.accessibility;
  const auto save = accessibility.element("Save");
  const auto menu = accessibility.element(std::nullopt, {save});
  const auto bar = accessibility.element("bar", {accessibility.element("File", {menu})});
  accessibility.setMenuBar(77, bar);

  const auto answer = accessibility.application(77)->attribute("AXMenuBar");
  EXPECT_EQ(answer.error, 0);
  EXPECT_EQ(std::get<platform::ElementRef>(answer.value), bar);
  EXPECT_EQ(std::get<std::string>(save->attribute("AXTitle").value), "Save");
  EXPECT_EQ(menu->attribute("AXTitle").error, accessibility_error::noValue);
  EXPECT_THAT(std::get<std::vector<platform::ElementRef>>(menu->attribute("AXChildren").value),
              ElementsAre(save));

  save->attributes["AXTitle"] = {-25205, platform::OtherValue{}};
  EXPECT_EQ(save->attribute("AXTitle").error, -25205);
  EXPECT_TRUE(std::holds_alternative<platform::OtherValue>(save->attribute("AXTitle").value));
}

TEST_F(SimulatedHostTest, APressIsRecordedEvenWhenItIsRefused) {
  const auto save = host.accessibility.element("Save");
  save->performError = -25204;
  EXPECT_EQ(save->perform("AXPress"), -25204);
  EXPECT_THAT(host.trace.of<trace::Performed>(), ElementsAre(trace::Performed{"Save", "AXPress"}));
}

TEST_F(SimulatedHostTest, WithoutPermissionNoElementAnswers) {
  const auto save = host.accessibility.element("Save");
  host.accessibility.trusted = false;
  EXPECT_EQ(save->attribute("AXTitle").error, accessibility_error::disabled);
  EXPECT_EQ(save->perform("AXPress"), accessibility_error::disabled);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  EXPECT_EQ(host.accessibility.application(1)->attribute("AXMenuBar").error,
            accessibility_error::invalidElement)
      << "and there is no such process either";
}

TEST_F(SimulatedHostTest, ThePermissionMayComeLater) {
  host.accessibility.trusted = false;
  host.accessibility.grantAfter(5);
  EXPECT_FALSE(host.accessibility.isTrusted());
  EXPECT_THAT(host.trace.entries(), IsEmpty()) << "asking without a prompt leaves no trace";
  EXPECT_FALSE(host.accessibility.isTrustedPrompting());
  EXPECT_EQ(host.trace.of<trace::AskedForTrust>().size(), 1u);
  host.advance(5);
  EXPECT_TRUE(host.accessibility.isTrusted());
  EXPECT_TRUE(host.accessibility.isTrustedPrompting());
  EXPECT_EQ(host.trace.of<trace::AskedForTrust>().size(), 1u);
}

TEST_F(SimulatedHostTest, ApplicationsAreListedInTheOrderOfTheirStart) {
  host.applications.start("com.microsoft.Excel", 77);
  host.applications.start("com.apple.finder", 1);
  host.applications.start("com.microsoft.Excel", 78);
  EXPECT_THAT(host.applications.running("com.microsoft.Excel"), ElementsAre(77, 78));
  EXPECT_THAT(host.applications.running("com.microsoft.excel"), IsEmpty());
  host.applications.quit(77);
  EXPECT_THAT(host.applications.running("com.microsoft.Excel"), ElementsAre(78));
}

TEST_F(SimulatedHostTest, TheStatusItemShowsWhatItIsGivenAndIsGoneWithItsHandle) {
  auto item = host.statusBar.createItem();
  item->setTitle("⌥");
  item->setMenu({{row("Reload", 'r'), MenuRow::separator(), disabled("information")}});
  EXPECT_TRUE(host.statusBar.hasItem());
  EXPECT_EQ(host.statusBar.title(), "⌥");
  EXPECT_THAT(host.trace.of<trace::MenuShown>(),
              ElementsAre(trace::MenuShown{{"Reload", "", "information"}}));
  item.reset();
  EXPECT_FALSE(host.statusBar.hasItem());
}

TEST_F(SimulatedHostTest, RowsAreChosenByTitleOrLetter) {
  const auto item = host.statusBar.createItem();
  item->setMenu({{row("Reload", 'r'), row("Log", 'l'), disabled("off", 'o')}});
  host.statusBar.choose("Log");
  EXPECT_TRUE(host.statusBar.pressKey('r'));
  EXPECT_FALSE(host.statusBar.pressKey('o')) << "a disabled row cannot be chosen";
  EXPECT_FALSE(host.statusBar.pressKey('x'));
  EXPECT_THAT(host.trace.of<trace::Note>(), ElementsAre(trace::Note{"Log"}, trace::Note{"Reload"}));
}

TEST_F(SimulatedHostTest, AnActionMayReplaceTheMenuItIsIn) {
  const auto item = host.statusBar.createItem();
  platform::StatusItem* shown = item.get();
  item->setMenu({{MenuRow{.title = "Toggle", .action = [shown] { shown->setMenu({}); }}}});
  host.statusBar.choose("Toggle");
  EXPECT_THAT(host.statusBar.menu().rows, IsEmpty());
}

TEST_F(SimulatedHostTest, TheEndOfTheProcessRunsItsBlocksBackwardsOnce) {
  host.process.atExit([this] { host.trace.note("first given"); });
  host.process.atExit([this] { host.trace.note("last given"); });
  host.process.exit(1);
  host.application.terminate();
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(trace::Note{"last given"}), TraceEntry(trace::Note{"first given"}),
                          TraceEntry(trace::Exited{1}), TraceEntry(trace::Exited{0})));
}

TEST_F(SimulatedHostTest, RunningTheApplicationIsWhatTheTestDoesMeanwhile) {
  host.application.whileRunning = [this] { host.trace.note("running"); };
  host.application.setDelegate([this] { host.trace.note("did finish launching"); });
  EXPECT_EQ(host.application.run(), 0);
  EXPECT_THAT(host.trace.of<trace::Note>(),
              ElementsAre(trace::Note{"did finish launching"}, trace::Note{"running"}));
}

TEST_F(SimulatedHostTest, TheLoginServiceFollowsItsCalls) {
  EXPECT_EQ(host.loginService.status(), platform::LoginStatus::notRegistered);
  EXPECT_EQ(host.loginService.registerProgram(), std::nullopt);
  EXPECT_EQ(host.loginService.status(), platform::LoginStatus::enabled);
  host.failures.always(Call::unregisterProgram);
  EXPECT_EQ(host.loginService.unregisterProgram(), "Operation not permitted");
  EXPECT_EQ(host.loginService.status(), platform::LoginStatus::enabled);
  EXPECT_THAT(host.trace.of<trace::LoginChanged>(),
              ElementsAre(trace::LoginChanged{true}, trace::LoginChanged{false}));
}

TEST_F(SimulatedHostTest, ScriptsEndAsATestSays) {
  host.scripts.outcome = {false, "no such menu"};
  EXPECT_EQ(host.scripts.run("beep").message, "no such menu");
  EXPECT_THAT(host.trace.of<trace::ScriptRun>(), ElementsAre(trace::ScriptRun{"beep"}));
}

TEST_F(SimulatedHostTest, TheTraceForgetsWhatWasTakenAndStopsWhenTold) {
  host.console.write("keyvora: one");
  host.console.write("a record of someone else");
  EXPECT_THAT(host.trace.logged(), ElementsAre("one", "a record of someone else"));
  EXPECT_EQ(host.trace.take().size(), 2u);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  host.trace.stop();
  host.console.write("two");
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(SimulatedHostTest, TraceEntriesReadWellInTheOutputOfATest) {
  const std::pair<TraceEntry, const char*> rows[] = {
      {trace::Console{"keyvora: launch 1.2 (42)"}, R"x(Console "keyvora: launch 1.2 (42)")x"},
      {trace::Posted{77, {10, 4, 0x20000, 0x5E7A91C3}},
       "Posted to 77 {type 10, key 4, flags 0x20000, user data 0x5e7a91c3}"},
      {trace::Posted{std::nullopt, {11, 4, 0, 0}},
       "Posted to hardware {type 11, key 4, flags 0x0, user data 0x0}"},
      {trace::Slept{std::chrono::microseconds(80'000)}, "Slept 80000 us"},
      {trace::Performed{"Save", "AXPress"}, R"(Performed AXPress on "Save")"},
      {trace::MenuShown{{"Reload", ""}}, R"(MenuShown "Reload" "")"},
      {trace::UpdaterCalled{trace::UpdaterCalled::What::probed}, "UpdaterCalled probed"},
  };
  for (const auto& [entry, text] : rows) {
    std::ostringstream out;
    PrintTo(entry, &out);
    EXPECT_EQ(out.str(), text);
  }
}

}  // namespace
}  // namespace keyvora::simulated
