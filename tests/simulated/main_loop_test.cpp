#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

using platform::Seconds;
using platform::TimerMode;
using std::chrono::microseconds;
using testing::ElementsAre;
using testing::IsEmpty;

struct SimulatedMainLoopTest : testing::Test {
  Host host;
  platform::MainLoop& loop = host.mainLoop;
  std::vector<std::string> ran;

  std::function<void()> note(std::string name) {
    return [this, name = std::move(name)] { ran.push_back(name); };
  }
  std::unique_ptr<platform::Timer> once(double seconds, std::string name,
                                        TimerMode mode = TimerMode::defaultMode) {
    return loop.schedule(Seconds(seconds), false, mode, note(std::move(name)));
  }
};

TEST_F(SimulatedMainLoopTest, RunsWhatFallsDueInOrderOfDeadlineThenOfSubmission) {
  const auto late = once(0.3, "timer 0.3");
  loop.after(Seconds(0.2), note("block 0.2"));
  const auto early = once(0.1, "timer 0.1");
  const auto tie = once(0.2, "timer 0.2");
  host.advance(0.09);
  EXPECT_THAT(ran, IsEmpty());
  host.advance(1);
  EXPECT_THAT(ran, ElementsAre("timer 0.1", "block 0.2", "timer 0.2", "timer 0.3"));
}

TEST_F(SimulatedMainLoopTest, ADeadlineThatIsReachedCountsHoweverItWasReached) {
  const auto timer = once(0.3, "timer");
  host.advance(0.1);
  host.advance(0.2);
  EXPECT_THAT(ran, ElementsAre("timer"));
}

TEST_F(SimulatedMainLoopTest, ATimerOfZeroOrLessRunsAtTheNextAdvanceNotBefore) {
  const auto zero = once(0, "zero");
  const auto negative = once(-5, "negative");
  EXPECT_THAT(ran, IsEmpty());
  host.advance(0);
  EXPECT_THAT(ran, ElementsAre("zero", "negative"));
}

TEST_F(SimulatedMainLoopTest, AnIntervalBeyondTheClockIsNeverReached) {
  const auto timer = once(9e15, "timer");
  host.advance(1e9);
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_EQ(host.mainLoop.pending(), 1u);
}

TEST_F(SimulatedMainLoopTest, EachBlockRunsAtItsOwnTime) {
  std::vector<microseconds> times;
  loop.after(Seconds(0.5), [&] {
    times.push_back(host.mainLoop.now());
    loop.after(Seconds(0.25), [&] { times.push_back(host.mainLoop.now()); });
  });
  host.advance(1);
  EXPECT_THAT(times, ElementsAre(microseconds(500'000), microseconds(750'000)));
  EXPECT_EQ(host.mainLoop.now(), microseconds(1'000'000));
}

TEST_F(SimulatedMainLoopTest, AOneShotTimerIsDoneFromItsFiringOn) {
  std::size_t pendingInside = 1;
  const auto timer = loop.schedule(Seconds(1), false, TimerMode::defaultMode,
                                   [&] { pendingInside = host.mainLoop.pending(); });
  EXPECT_EQ(host.mainLoop.pending(), 1u);
  host.advance(1);
  EXPECT_EQ(pendingInside, 0u);
}

TEST_F(SimulatedMainLoopTest, AnInvalidatedOrDestroyedTimerStaysSilent) {
  const auto kept = once(1, "kept");
  auto destroyed = once(1, "destroyed");
  kept->invalidate();
  kept->invalidate();
  destroyed.reset();
  host.advance(2);
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_EQ(host.mainLoop.pending(), 0u);
}

TEST_F(SimulatedMainLoopTest, ARepeatingTimerFiresUntilItsBlockInvalidatesIt) {
  std::unique_ptr<platform::Timer> timer;
  timer = loop.schedule(Seconds(2), true, TimerMode::defaultMode, [&] {
    ran.push_back("tick");
    if (ran.size() == 3) timer->invalidate();
  });
  host.advance(1.9);
  EXPECT_THAT(ran, IsEmpty());
  host.advance(100);
  EXPECT_EQ(ran.size(), 3u);
}

TEST_F(SimulatedMainLoopTest, ATimerMayBeDestroyedByItsOwnBlock) {
  std::unique_ptr<platform::Timer> timer;
  timer = loop.schedule(Seconds(1), true, TimerMode::defaultMode, [&, text = std::string(100, 'x')] {
    timer.reset();
    ran.push_back(text);
  });
  host.advance(5);
  EXPECT_THAT(ran, ElementsAre(std::string(100, 'x')));
}

TEST_F(SimulatedMainLoopTest, DefaultModeTimersWaitForOurMenuToClose) {
  host.mainLoop.menuTracking = true;
  const auto waits = once(1, "default mode");
  const auto runs = once(2, "common modes", TimerMode::commonModes);
  loop.after(Seconds(3), note("block"));
  host.advance(10);
  EXPECT_THAT(ran, ElementsAre("common modes", "block"));
  host.mainLoop.menuTracking = false;
  host.advance(0);
  EXPECT_THAT(ran, ElementsAre("common modes", "block", "default mode"));
}

TEST_F(SimulatedMainLoopTest, FiringsMissedBehindAMenuAreNotMadeUpFor) {
  const auto timer = loop.schedule(Seconds(2), true, TimerMode::defaultMode, note("tick"));
  host.mainLoop.menuTracking = true;
  host.advance(9);
  host.mainLoop.menuTracking = false;
  host.advance(0);
  EXPECT_EQ(ran.size(), 1u);
  host.advance(1);
  EXPECT_EQ(ran.size(), 2u) << "the next tick keeps to the timer's rhythm";
}

TEST_F(SimulatedMainLoopTest, TheMainThreadIsTheOneThatMadeTheHost) {
  EXPECT_TRUE(loop.isMainThread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = loop.isMainThread(); }).join();
  EXPECT_FALSE(elsewhere);
}

TEST_F(SimulatedMainLoopTest, BlocksMayComeFromAnyThread) {
  std::thread([&] { loop.after(Seconds(1), note("block")); }).join();
  host.advance(1);
  EXPECT_THAT(ran, ElementsAre("block"));
}

TEST_F(SimulatedMainLoopTest, TheWallClockRunsAlong) {
  EXPECT_EQ(host.clock.localTime(), "2026-01-02 03:04:05");
  host.advance(86'400 + 60.5);
  EXPECT_EQ(host.clock.localTime(), "2026-01-03 03:05:05");
}

TEST(SimulatedMainLoopDeathTest, AMainThreadCallFromABackgroundQueueIsFatal) {
  Host host;
  const auto queue = host.queues.createSerial("queue");
  EXPECT_DEATH(queue->async([&] { host.statusBar.createItem(); }),
               "Fatal error: createStatusItem was called off the main thread");
}

}  // namespace
}  // namespace keyvora::simulated
