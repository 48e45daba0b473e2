#include "system/bridge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

using platform::ActivationPolicy;
using simulated::TraceEntry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class BridgeTest : public testing::Test {
 protected:
  void listen() {
    bridge.onProbe = [this](const std::string& message, std::int32_t status) {
      answers.emplace_back(message, status);
    };
  }

  simulated::Host host;
  platform::Scope scope{host.platform()};
  Bridge bridge;
  std::vector<std::pair<std::string, std::int32_t>> answers;
  const platform::UpdateItem item{"1.3", "57"};
};

TEST_F(BridgeTest, AnUpdateIsToldWithBothVersions) {
  listen();
  bridge.didFindValidUpdate(item);
  EXPECT_THAT(answers, ElementsAre(Pair("update 1.3 (57)", 0)));
}

TEST_F(BridgeTest, NoUpdateIsCurrentWhateverTheReason) {
  listen();
  bridge.didNotFindUpdate("You’re up to date!");
  EXPECT_THAT(answers, ElementsAre(Pair("current", 0)));
}

TEST_F(BridgeTest, AnAbortedCheckIsAnErrorWithItsDescription) {
  listen();
  bridge.didAbort("The feed could not be reached.");
  EXPECT_THAT(answers, ElementsAre(Pair("error The feed could not be reached.", 1)));
}

TEST_F(BridgeTest, AnswersGoUnheardWhileNobodyAsked) {
  bridge.didFindValidUpdate(item);
  bridge.didNotFindUpdate("");
  bridge.didAbort("");
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(BridgeTest, ScheduledUpdatesAreShownByTheStandardInterface) {
  EXPECT_TRUE(bridge.supportsGentleScheduledUpdateReminders());
  EXPECT_TRUE(bridge.shouldHandleShowingScheduledUpdate(item, true));
  EXPECT_TRUE(bridge.shouldHandleShowingScheduledUpdate(item, false));
}

TEST_F(BridgeTest, TheApplicationIsARegularOneInFrontWhileAnUpdateIsShown) {
  bridge.willHandleShowingUpdate(true, item);
  EXPECT_THAT(host.trace.take(),
              ElementsAre(TraceEntry(simulated::trace::PolicySet{ActivationPolicy::regular}),
                          TraceEntry(simulated::trace::Activated{})));
  bridge.willFinishUpdateSession();
  EXPECT_THAT(host.trace.take(),
              ElementsAre(TraceEntry(simulated::trace::PolicySet{ActivationPolicy::accessory})));
}

TEST_F(BridgeTest, AnUpdateThatIsNotShownChangesNothing) {
  bridge.willHandleShowingUpdate(false, item);
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(BridgeTest, AnUpdateThatIsNotShownMayBeToldFromAnyThread) {
  std::thread([this] { bridge.willHandleShowingUpdate(false, item); }).join();
  EXPECT_THAT(host.trace.entries(), IsEmpty());
}

TEST_F(BridgeTest, TheQuestionsMayBeAskedFromAnyThread) {
  std::thread([this] {
    EXPECT_TRUE(bridge.supportsGentleScheduledUpdateReminders());
    EXPECT_TRUE(bridge.shouldHandleShowingScheduledUpdate(item, true));
  }).join();
}

class BridgeDeathTest : public testing::TestWithParam<std::pair<const char*, void (*)(Bridge&)>> {};

TEST_P(BridgeDeathTest, IsFatalOffTheMainThread) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto [name, call] = GetParam();
  const auto callElsewhere = [operation = call] {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    Bridge bridge;
    std::thread([&] { operation(bridge); }).join();
  };
  EXPECT_DEATH(callElsewhere(), std::string("Fatal error: Bridge::") + name + " must run on the main thread");
}

INSTANTIATE_TEST_SUITE_P(
    EachMethod, BridgeDeathTest,
    testing::Values(
        std::pair(
            "didFindValidUpdate", +[](Bridge& bridge) { bridge.didFindValidUpdate({}); }),
        std::pair(
            "didNotFindUpdate", +[](Bridge& bridge) { bridge.didNotFindUpdate(""); }),
        std::pair(
            "didAbort", +[](Bridge& bridge) { bridge.didAbort(""); }),
        std::pair(
            "willHandleShowingUpdate", +[](Bridge& bridge) { bridge.willHandleShowingUpdate(true, {}); }),
        std::pair(
            "willFinishUpdateSession", +[](Bridge& bridge) { bridge.willFinishUpdateSession(); })),
    [](const auto& test) { return std::string(test.param.first); });

}  // namespace
}  // namespace keyvora
