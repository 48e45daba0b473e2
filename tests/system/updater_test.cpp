#include "system/updater.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

using simulated::TraceEntry;
using simulated::trace::Exited;
using simulated::trace::Printed;
using simulated::trace::UpdaterCalled;
using testing::ElementsAre;
using testing::IsEmpty;
using What = UpdaterCalled::What;

class UpdaterTest : public testing::Test {
 protected:
  simulated::Host host;
  platform::Scope scope{host.platform()};
};

TEST_F(UpdaterTest, IsOneInstance) {
  EXPECT_EQ(&Updater::shared(), &Updater::shared());
}

TEST_F(UpdaterTest, TheControllerIsMadeIdleOnFirstAccessAndKept) {
  auto& updater = Updater::shared();
  EXPECT_THAT(host.trace.entries(), IsEmpty());
  const auto* controller = &updater.controller();
  EXPECT_EQ(&updater.controller(), controller);
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(UpdaterCalled{What::created})));
}

TEST_F(UpdaterTest, AProbeStartsTheUpdaterAndThenChecksWithoutInterface) {
  Updater::shared().probe();
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(UpdaterCalled{What::created}), TraceEntry(UpdaterCalled{What::started}),
                          TraceEntry(UpdaterCalled{What::probed})));
}

TEST_F(UpdaterTest, TheAnswerIsPrintedAndThenEndsTheProcess) {
  host.updates.answer = platform::UpdateItem{"1.3", "57"};
  Updater::shared().probe();
  host.trace.clear();
  host.advance(0);
  EXPECT_THAT(host.trace.entries(),
              ElementsAre(TraceEntry(Printed{"update 1.3 (57)"}), TraceEntry(Exited{0})));
}

TEST_F(UpdaterTest, WithoutAProbeAnswersAreNeitherPrintedNorDoTheyEndTheProcess) {
  Updater::shared().controller().startUpdater();
  host.trace.clear();
  auto* delegate = host.updates.delegate();
  delegate->didFindValidUpdate({"1.3", "57"});
  delegate->didNotFindUpdate("none");
  delegate->didAbort("none");
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST(UpdaterDeathTest, AProbeOffTheMainThreadIsFatal) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto probeElsewhere = [] {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    auto& updater = Updater::shared();
    std::thread([&updater] { updater.probe(); }).join();
  };
  EXPECT_DEATH(probeElsewhere(), "Fatal error: Updater::probe must run on the main thread");
}

}  // namespace
}  // namespace keyvora
