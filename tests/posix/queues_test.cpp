#include "hosts/posix/queues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <latch>
#include <set>

namespace keyvora::posix {
namespace {

using namespace std::chrono_literals;

/// Longer than anything here takes: only a failing test reaches it.
constexpr auto limit = 20s;

TEST(PosixSerialQueueTest, RunsWorkInOrderOffTheCallersThread) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test");
  std::vector<int> ran;
  std::thread::id thread;
  for (int i = 0; i < 1000; ++i) queue->async([&ran, i] { ran.push_back(i); });
  queue->async([&thread] { thread = std::this_thread::get_id(); });
  ASSERT_TRUE(queue->drain(limit));
  ASSERT_EQ(ran.size(), 1000u);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(ran[static_cast<std::size_t>(i)], i);
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(PosixSerialQueueTest, KeepsTheOrderOfEachOfManyThreads) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test");
  std::vector<std::pair<int, int>> ran;
  const auto submit = [&](int thread) {
    for (int i = 0; i < 200; ++i) queue->async([&ran, thread, i] { ran.emplace_back(thread, i); });
  };
  std::array callers{std::thread(submit, 0), std::thread(submit, 1), std::thread(submit, 2),
                     std::thread(submit, 3)};
  for (auto& caller : callers) caller.join();
  ASSERT_TRUE(queue->drain(limit));
  ASSERT_EQ(ran.size(), 800u);
  int next[4] = {};
  for (const auto& [thread, i] : ran) EXPECT_EQ(i, next[thread]++);
}

TEST(PosixSerialQueueTest, DrainingGivesUpInTime) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test");
  std::latch release(1);
  queue->async([&release] { release.wait(); });
  EXPECT_FALSE(queue->drain(10ms));
  release.count_down();
  EXPECT_TRUE(queue->drain(limit));
}

TEST(PosixSerialQueueTest, DrainingAnIdleQueueReturnsAtOnce) {
  Queues queues;
  EXPECT_TRUE(queues.createSerial("org.keyvora.test")->drain(0ms));
}

TEST(PosixSerialQueueTest, DrainingWaitsOnlyForWhatWasSubmittedBefore) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test");
  // Each piece of work submits the next as long as the test runs.
  std::atomic<bool> stop = false;
  std::function<void()> again = [&] {
    if (!stop) queue->async(again);
  };
  queue->async(again);
  EXPECT_TRUE(queue->drain(limit));
  stop = true;
  EXPECT_TRUE(queue->drain(limit));
  EXPECT_TRUE(queue->drain(limit)) << "for the one that was submitted meanwhile";
}

TEST(PosixSerialQueueTest, DestroyingItDropsWhatHasNotBegun) {
  Queues queues;
  std::latch begun(1);
  std::latch release(1);
  std::atomic<int> ran = 0;
  auto queue = queues.createSerial("org.keyvora.test");
  queue->async([&] {
    begun.count_down();
    release.wait();
    ++ran;
  });
  queue->async([&ran] { ++ran; });
  begun.wait();
  auto destroyed = std::async(std::launch::async, [&queue] { queue.reset(); });
  // The destructor waits for the running work.
  EXPECT_EQ(destroyed.wait_for(10ms), std::future_status::timeout);
  release.count_down();
  ASSERT_EQ(destroyed.wait_for(limit), std::future_status::ready);
  EXPECT_EQ(ran, 1);
}

TEST(PosixPlanTest, StepsRunInOrderWithTheirSleepsBetween) {
  using Clock = std::chrono::steady_clock;
  std::vector<Clock::time_point> times;
  std::promise<void> done;
  Queues queues;
  queues.walk({[&] {
                 times.push_back(Clock::now());
                 return 3000us;
               },
               [&] {
                 times.push_back(Clock::now());
                 return 0us;
               },
               [&] {
                 times.push_back(Clock::now());
                 done.set_value();
                 return 0us;
               }});
  ASSERT_EQ(done.get_future().wait_for(limit), std::future_status::ready);
  ASSERT_EQ(times.size(), 3u);
  EXPECT_GE(times[1] - times[0], 3000us);
  EXPECT_LE(times[1], times[2]);
}

TEST(PosixPlanTest, PlansGivenAtOnceRunAlongsideEachOther) {
  constexpr int plans = 5;
  std::latch all(plans);  // each waits for the others, so they end only if they run in parallel
  std::latch done(plans);
  Queues queues;
  for (int i = 0; i < plans; ++i) {
    queues.walk({[&] {
                   all.arrive_and_wait();
                   return 1us;
                 },
                 [&] {
                   done.count_down();
                   return 0us;
                 }});
  }
  done.wait();
}

TEST(PosixPlanTest, ALaterPlanUsesTheThreadOfOneThatEnded) {
  Queues queues;
  std::set<std::thread::id> threads;
  for (int i = 0; i < 100; ++i) {
    std::promise<std::thread::id> ran;
    queues.walk({[&ran] {
      ran.set_value(std::this_thread::get_id());
      return 0us;
    }});
    threads.insert(ran.get_future().get());
  }
  // A thread that has just finished a plan may not be idle again when the next one comes; then another is
  // started.
  EXPECT_LT(threads.size(), 50u);
  EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
}

TEST(PosixPlanTest, AnEmptyPlanIsWalked) {
  Queues queues;
  queues.walk({});
}

TEST(PosixPlanTest, TheEndOfTheQueuesEndsAPlanInItsSleep) {
  std::atomic<bool> second = false;
  {
    Queues queues;
    std::promise<void> first;
    queues.walk({[&first]() -> std::chrono::microseconds {
                   first.set_value();
                   return 1h;
                 },
                 [&second] {
                   second = true;
                   return 0us;
                 }});
    first.get_future().wait();
  }
  EXPECT_FALSE(second);
}

}  // namespace
}  // namespace keyvora::posix
