#include "hosts/x11/loop/main_loop.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "hosts/x11/keyboard/wakeup.h"
#include "hosts/x11/loop/glib_source.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

using platform::Seconds;
using platform::TimerMode;

/// A delay that is over at once.
constexpr Seconds soon{0.005};

/// Later than that also on a busy machine, whose loop comes late: what is due in one turn has no order.
constexpr Seconds longAfter{0.4};

class MainLoopTest : public testing::Test {
 protected:
  std::function<void()> note(std::string name) {
    return [this, name = std::move(name)] { fired.push_back(name); };
  }

  bool awaitCount(std::size_t count) {
    return runUntil([this, count] { return fired.size() >= count; });
  }

  MainLoop loop;
  std::vector<std::string> fired;
};

TEST_F(MainLoopTest, TheThreadThatMadeItIsTheMainThread) {
  bool other = true;
  std::thread([&] { other = loop.isMainThread(); }).join();
  EXPECT_TRUE(loop.isMainThread());
  EXPECT_FALSE(other);
}

TEST_F(MainLoopTest, AOneShotTimerFiresOnce) {
  const auto timer = loop.schedule(soon, false, TimerMode::defaultMode, note("once"));
  ASSERT_TRUE(awaitCount(1));
  const auto later = loop.schedule(5 * soon, false, TimerMode::defaultMode, note("later"));
  ASSERT_TRUE(awaitCount(2));
  EXPECT_EQ(fired, (std::vector<std::string>{"once", "later"}));
}

TEST_F(MainLoopTest, ARepeatingTimerFiresUntilItInvalidatesItself) {
  std::unique_ptr<platform::Timer> timer;
  timer = loop.schedule(soon, true, TimerMode::defaultMode, [&] {
    fired.emplace_back("tick");
    if (fired.size() == 3) timer->invalidate();
  });
  ASSERT_TRUE(awaitCount(3));
  timer->invalidate();
  const auto later = loop.schedule(5 * soon, false, TimerMode::defaultMode, note("later"));
  ASSERT_TRUE(awaitCount(4));
  EXPECT_EQ(fired.back(), "later");
}

TEST_F(MainLoopTest, ATimerFiresNoEarlierThanItIsDue) {
  const auto start = std::chrono::steady_clock::now();
  const auto timer = loop.schedule(Seconds(0.05), false, TimerMode::defaultMode, note("due"));
  ASSERT_TRUE(awaitCount(1));
  EXPECT_GE(std::chrono::steady_clock::now() - start, Seconds(0.05));
}

TEST_F(MainLoopTest, TimersFireInTheOrderOfTheirMoments) {
  const auto second = loop.schedule(longAfter, false, TimerMode::defaultMode, note("second"));
  const auto first = loop.schedule(soon, false, TimerMode::defaultMode, note("first"));
  loop.after(2 * longAfter, note("third"));
  ASSERT_TRUE(awaitCount(3));
  EXPECT_EQ(fired, (std::vector<std::string>{"first", "second", "third"}));
}

TEST_F(MainLoopTest, NoIntervalMeansTheNextPassOfTheLoop) {
  for (const double seconds : {0.0, -1.0, -1e300, -std::numeric_limits<double>::infinity(), std::nan("")}) {
    fired.clear();
    const auto timer = loop.schedule(Seconds(seconds), false, TimerMode::defaultMode, note("at once"));
    EXPECT_TRUE(fired.empty());
    EXPECT_TRUE(awaitCount(1)) << seconds;
  }
}

TEST_F(MainLoopTest, AnIntervalBeyondAllTimeIsNeverOver) {
  for (const double seconds : {1e12, 1e300, std::numeric_limits<double>::infinity()}) {
    const auto never = loop.schedule(Seconds(seconds), true, TimerMode::defaultMode, note("never"));
    loop.after(Seconds(seconds), note("never"));
    const auto soonAfter = loop.schedule(soon, false, TimerMode::defaultMode, note("soon"));
    ASSERT_TRUE(awaitCount(1));
    EXPECT_EQ(std::exchange(fired, {}), std::vector<std::string>{"soon"});
  }
}

TEST_F(MainLoopTest, ADestroyedTimerDoesNotFire) {
  loop.schedule(soon, false, TimerMode::defaultMode, note("destroyed"));
  auto kept = loop.schedule(soon, true, TimerMode::commonModes, note("invalidated"));
  kept->invalidate();
  loop.after(5 * soon, note("later"));
  ASSERT_TRUE(awaitCount(1));
  EXPECT_EQ(fired, std::vector<std::string>{"later"});
}

TEST_F(MainLoopTest, ATimerMayDestroyItselfInItsBlock) {
  std::unique_ptr<platform::Timer> timer;
  timer = loop.schedule(soon, true, TimerMode::defaultMode, [this, &timer, big = std::string(100, 'x')] {
    timer.reset();
    fired.push_back(big);
  });
  ASSERT_TRUE(awaitCount(1));
  EXPECT_EQ(fired.front(), std::string(100, 'x'));
}

TEST_F(MainLoopTest, ATimerMayBeKeptLongerThanTheLoop) {
  auto other = std::make_unique<MainLoop>();
  const auto timer = other->schedule(soon, true, TimerMode::defaultMode, note("kept"));
  other->beginTracking();
  other.reset();
  const auto later = loop.schedule(5 * soon, false, TimerMode::defaultMode, note("later"));
  ASSERT_TRUE(awaitCount(1));
  EXPECT_EQ(fired, std::vector<std::string>{"later"}) << "the menu of the other loop is still open";
}

TEST_F(MainLoopTest, WhileAMenuIsOpenTimersOfTheDefaultModeWait) {
  loop.beginTracking();
  const auto waiting = loop.schedule(soon, false, TimerMode::defaultMode, note("default"));
  const auto common = loop.schedule(2 * soon, false, TimerMode::commonModes, note("common"));
  loop.after(longAfter, note("after"));
  ASSERT_TRUE(awaitCount(2));
  EXPECT_EQ(fired, (std::vector<std::string>{"common", "after"}));

  loop.endTracking();
  EXPECT_EQ(fired.size(), 2u) << "it fires from the loop, not from the menu";
  ASSERT_TRUE(awaitCount(3));
  EXPECT_EQ(fired.back(), "default");
}

TEST_F(MainLoopTest, ARepeatingTimerThatWaitedFiresOnceAndGoesOn) {
  loop.beginTracking();
  auto ticking = loop.schedule(soon, true, TimerMode::defaultMode, note("tick"));
  const auto longer = loop.schedule(10 * soon, false, TimerMode::commonModes, note("common"));
  ASSERT_TRUE(awaitCount(1));
  EXPECT_EQ(fired, std::vector<std::string>{"common"});
  loop.endTracking();
  ASSERT_TRUE(awaitCount(3));
  ticking->invalidate();
}

TEST_F(MainLoopTest, ATimerThatWaitsForAMenuCanStillBeInvalidated) {
  loop.beginTracking();
  auto waiting = loop.schedule(soon, false, TimerMode::defaultMode, note("default"));
  loop.after(3 * soon, note("after"));
  ASSERT_TRUE(awaitCount(1));
  waiting.reset();
  loop.endTracking();
  loop.after(soon, note("end"));
  ASSERT_TRUE(awaitCount(2));
  EXPECT_EQ(fired, (std::vector<std::string>{"after", "end"}));
}

TEST_F(MainLoopTest, AKeyGoesBeforeTheNextOfTheBlocksThatAreDueTogether) {
  const Wakeup key;
  const ReadableSource keyboard(key.fileDescriptor(), G_PRIORITY_HIGH, [&] {
    key.clear();
    fired.emplace_back("key");
  });
  for (const int block : {1, 2, 3}) {
    loop.after({}, [&, block] {
      fired.push_back(std::to_string(block));
      if (block < 3) key.signal();
    });
  }
  ASSERT_TRUE(awaitCount(5));
  EXPECT_EQ(fired, (std::vector<std::string>{"1", "key", "2", "key", "3"}));
}

TEST_F(MainLoopTest, ABlockThatRunsTheLoopLetsTheOthersRunMeanwhile) {
  loop.after({}, [&] {
    EXPECT_TRUE(awaitCount(1));
    fired.emplace_back("outer");
  });
  loop.after({}, note("inner"));
  ASSERT_TRUE(awaitCount(2));
  EXPECT_EQ(fired, (std::vector<std::string>{"inner", "outer"}));
}

TEST_F(MainLoopTest, BlocksThatAreNotDueGoWithTheLoop) {
  auto other = std::make_unique<MainLoop>();
  const auto held = std::make_shared<int>(0);
  other->after(soon, [held] { ADD_FAILURE() << "its loop is gone"; });
  EXPECT_EQ(held.use_count(), 2);
  other.reset();
  EXPECT_EQ(held.use_count(), 1);
  loop.after(3 * soon, note("later"));
  ASSERT_TRUE(awaitCount(1));
}

TEST_F(MainLoopTest, AfterTakesBlocksFromAnyThreadAndRunsThemOnTheMainThread) {
  constexpr std::size_t threads = 4;
  constexpr std::size_t blocks = 100;
  std::size_t ran = 0;
  bool alwaysMain = true;
  std::vector<std::thread> givers;
  for (std::size_t giver = 0; giver < threads; ++giver) {
    givers.emplace_back([&] {
      for (std::size_t block = 0; block < blocks; ++block) {
        loop.after({}, [&] {
          ++ran;
          alwaysMain = alwaysMain && loop.isMainThread();
        });
      }
    });
  }
  EXPECT_TRUE(runUntil([&] { return ran == threads * blocks; }));
  for (auto& giver : givers) giver.join();
  EXPECT_TRUE(alwaysMain);
}

}  // namespace
}  // namespace keyvora::x11
