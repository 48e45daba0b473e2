#import "hosts/macos/main_loop.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <thread>

#include "tests/macos/run_loop.h"

namespace keyvora::macos {
namespace {

using platform::Seconds;
using platform::TimerMode;

TEST(MainLoop, KnowsTheMainThread) {
  MainLoop loop;
  EXPECT_TRUE(loop.isMainThread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = loop.isMainThread(); }).join();
  EXPECT_FALSE(elsewhere);
}

TEST(MainLoop, AOneShotTimerFiresOnce) {
  MainLoop loop;
  int fired = 0;
  const auto timer = loop.schedule(Seconds(0.02), false, TimerMode::defaultMode, [&] { ++fired; });
  EXPECT_TRUE(runLoopUntil([&] { return fired == 1; }));
  EXPECT_FALSE(runLoopUntil([&] { return fired > 1; }, 0.1));
}

TEST(MainLoop, ARepeatingTimerStopsWhenItsOwnBlockInvalidatesIt) {
  MainLoop loop;
  int fired = 0;
  std::unique_ptr<platform::Timer> timer;
  timer = loop.schedule(Seconds(0.01), true, TimerMode::defaultMode, [&] {
    if (++fired == 3) timer->invalidate();
  });
  EXPECT_TRUE(runLoopUntil([&] { return fired == 3; }));
  EXPECT_FALSE(runLoopUntil([&] { return fired > 3; }, 0.1));
}

TEST(MainLoop, DestroyingATimerInvalidatesIt) {
  MainLoop loop;
  bool fired = false;
  loop.schedule(Seconds(0.01), false, TimerMode::defaultMode, [&] { fired = true; }).reset();
  EXPECT_FALSE(runLoopUntil([&] { return fired; }, 0.1));
}

TEST(MainLoop, ANegativeIntervalFiresAtTheNextPass) {
  MainLoop loop;
  bool fired = false;
  const auto timer = loop.schedule(Seconds(-1), false, TimerMode::defaultMode, [&] { fired = true; });
  EXPECT_FALSE(fired);
  EXPECT_TRUE(runLoopUntil([&] { return fired; }));
}

TEST(MainLoop, OnlyCommonModeTimersFireWhileAMenuIsTracked) {
  MainLoop loop;
  bool standard = false;
  bool common = false;
  // A run-loop mode without sources or timers returns at once; the timer in the common modes keeps it
  // running.
  const auto first = loop.schedule(Seconds(0.01), false, TimerMode::defaultMode, [&] { standard = true; });
  const auto second = loop.schedule(Seconds(0.02), false, TimerMode::commonModes, [&] { common = true; });
  const auto tracking = (__bridge CFRunLoopMode)NSEventTrackingRunLoopMode;
  [NSApplication sharedApplication];
  EXPECT_TRUE(runLoopUntil([&] { return common; }, 5.0, tracking));
  EXPECT_FALSE(standard);
  EXPECT_TRUE(runLoopUntil([&] { return standard; }));
}

TEST(MainLoop, ABlockFromAnotherThreadRunsOnTheMainThread) {
  MainLoop loop;
  bool ran = false;
  std::thread([&] { loop.after(Seconds(0.01), [&] { ran = loop.isMainThread(); }); }).join();
  EXPECT_TRUE(runLoopUntil([&] { return ran; }));
}

}  // namespace
}  // namespace keyvora::macos
