#include "app/process_entry.h"

#include <string_view>

#include "shell_test.h"

namespace keyvora {
namespace {

using platform::ActivationPolicy;
using simulated::TraceEntry;
using simulated::trace::DelegateSet;
using simulated::trace::Exited;
using simulated::trace::PolicySet;
using simulated::trace::Printed;
using simulated::trace::TitleShown;
using simulated::trace::UpdaterCalled;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using What = UpdaterCalled::What;

class ProcessEntryTest : public ShellTest {
 protected:
  int run(std::vector<std::string_view> arguments) { return processEntry(arguments); }

  std::vector<What> updaterCalls() {
    std::vector<What> calls;
    for (const auto& call : host.trace.of<UpdaterCalled>()) calls.push_back(call.what);
    return calls;
  }
};

TEST_F(ProcessEntryTest, GivesTheApplicationItsDelegateThenMakesItAnAccessoryThenLaunches) {
  EXPECT_EQ(run({"keyvora"}), 0);
  const auto entries = host.trace.entries();
  ASSERT_GE(entries.size(), 3U);
  EXPECT_EQ(entries[0], TraceEntry(DelegateSet{}));
  EXPECT_EQ(entries[1], TraceEntry(PolicySet{ActivationPolicy::accessory}));
  EXPECT_EQ(entries[2], TraceEntry(TitleShown{"⌥"}));
}

TEST_F(ProcessEntryTest, KeepsTheDelegateWhileTheLoopRuns) {
  bool hadItem = false;
  host.application.whileRunning = [&] { hadItem = host.statusBar.hasItem(); };
  run({"keyvora"});
  EXPECT_TRUE(hadItem);
}

TEST_F(ProcessEntryTest, WithoutTheOptionNothingIsProbed) {
  run({"keyvora"});
  EXPECT_THAT(updaterCalls(), ElementsAre(What::created, What::started));
}

TEST_F(ProcessEntryTest, TheProbeStartsBeforeTheLoopAndTheLaunchStillFollows) {
  run({"keyvora", "--probe-updates"});
  EXPECT_THAT(updaterCalls(), ElementsAre(What::created, What::started, What::probed, What::started));
  EXPECT_THAT(host.trace.logged(), Contains("launch 1.2 (42)"));
  const auto entries = host.trace.entries();
  EXPECT_EQ(entries[4], TraceEntry(UpdaterCalled{What::probed}));
  EXPECT_EQ(entries[5], TraceEntry(TitleShown{"⌥"}));
}

TEST_F(ProcessEntryTest, TheOptionCountsAnywhereInTheCommandLineEvenAsTheProgramsName) {
  run({"--probe-updates"});
  EXPECT_THAT(updaterCalls(), Contains(What::probed));
}

TEST_F(ProcessEntryTest, TheOptionCountsAmongOthers) {
  run({"keyvora", "--quiet", "--probe-updates", "file.json"});
  EXPECT_THAT(updaterCalls(), Contains(What::probed));
}

TEST_F(ProcessEntryTest, AnythingElseIsIgnored) {
  run({"keyvora", "--help", "--probe-update", "--probe-updates=1", " --probe-updates", "--Probe-Updates",
       ""});
  EXPECT_THAT(updaterCalls(), Not(Contains(What::probed)));
  EXPECT_THAT(host.trace.of<Printed>(), IsEmpty());
}

TEST_F(ProcessEntryTest, AnEmptyCommandLineIsAPlainStart) {
  EXPECT_EQ(run({}), 0);
  EXPECT_THAT(host.trace.logged(), Contains("launch 1.2 (42)"));
}

struct ProbeCase {
  const char* name;
  simulated::UpdateAnswer answer;
  const char* line;
  int status;
};

class ProbeTest : public ShellTest, public testing::WithParamInterface<ProbeCase> {};

TEST_P(ProbeTest, TheAnswerEndsTheProcessWhileTheLoopRuns) {
  host.updates.answer = GetParam().answer;
  // In a real process the first answer ends it at once.
  host.application.whileRunning = [this] {
    EXPECT_THAT(host.trace.of<Printed>(), IsEmpty());
    host.advance(0);
  };
  const std::vector<std::string_view> arguments{"keyvora", "--probe-updates"};
  processEntry(arguments);
  const auto printed = host.trace.of<Printed>();
  const auto exited = host.trace.of<Exited>();
  ASSERT_FALSE(printed.empty());
  ASSERT_FALSE(exited.empty());
  EXPECT_EQ(printed.front().line, GetParam().line);
  EXPECT_EQ(exited.front().status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Outcomes, ProbeTest,
                         testing::Values(ProbeCase{"Update", platform::UpdateItem{"1.3", "57"},
                                                   "update 1.3 (57)", 0},
                                         ProbeCase{"NoUpdate", simulated::NoUpdate{}, "current", 0},
                                         ProbeCase{"Error", simulated::UpdateError{"The feed is away."},
                                                   "error The feed is away.", 1}),
                         [](const auto& test) { return test.param.name; });

TEST_F(ProcessEntryTest, AProbeWithoutAnAnswerLeavesAnOrdinaryApplication) {
  host.application.whileRunning = [this] { host.advance(3600); };
  run({"keyvora", "--probe-updates"});
  EXPECT_THAT(host.trace.of<Exited>(), IsEmpty());
}

TEST_F(ProcessEntryTest, ASecondInstanceSaysSoAndEndsWithAStatusOfItsOwn) {
  const std::vector<std::string_view> start{"keyvora"};
  EXPECT_EQ(refuseStart(host, start), std::nullopt);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  host.hasOtherInstance = true;
  EXPECT_EQ(refuseStart(host, start), 3);
  EXPECT_THAT(host.trace.logged(), ElementsAre("another keyvora is running"));
  EXPECT_FALSE(host.statusBar.hasItem());
}

TEST_F(ProcessEntryTest, ALookForUpdatesIsInNobodysWay) {
  host.hasOtherInstance = true;
  const std::vector<std::string_view> probe{"keyvora", "--probe-updates"};
  EXPECT_EQ(refuseStart(host, probe), std::nullopt);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

}  // namespace
}  // namespace keyvora
