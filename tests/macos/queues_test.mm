#import "hosts/macos/queues.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace keyvora::macos {
namespace {

using namespace std::chrono_literals;

TEST(Queues, ASerialQueueKeepsTheOrderAndDrains) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test.log");
  std::vector<int> ran;
  for (int number = 0; number < 100; ++number) queue->async([&ran, number] { ran.push_back(number); });
  ASSERT_TRUE(queue->drain(5s));
  ASSERT_EQ(ran.size(), 100U);
  for (int number = 0; number < 100; ++number) EXPECT_EQ(ran[static_cast<std::size_t>(number)], number);
}

TEST(Queues, ADrainThatTakesTooLongGivesUp) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test.log");
  std::atomic<bool> release = false;
  queue->async([&release] { release.wait(false); });
  EXPECT_FALSE(queue->drain(20ms));
  release = true;
  release.notify_all();
  EXPECT_TRUE(queue->drain(5s));
}

TEST(Queues, TwoPlansRunAlongsideEachOther) {
  Queues queues;
  std::atomic<int> first = 0;
  std::atomic<int> second = 0;
  // Each waits for the other's first step, so they end only if they run in parallel.
  queues.walk({[&] {
                 first = 1;
                 first.notify_all();
                 second.wait(0);
                 return 0us;
               },
               [&] {
                 first = 2;
                 first.notify_all();
                 return 0us;
               }});
  queues.walk({[&] {
                 second = 1;
                 second.notify_all();
                 first.wait(0);
                 return 0us;
               },
               [&] {
                 second = 2;
                 second.notify_all();
                 return 0us;
               }});
  first.wait(0);
  first.wait(1);
  second.wait(0);
  second.wait(1);
  EXPECT_EQ(first + second, 4);
}

TEST(Queues, AStepThatThrowsDoesNotEndThePlanNorTheProgram) {
  Queues queues;
  std::atomic<int> reached = 0;
  queues.walk({[]() -> std::chrono::microseconds { throw std::runtime_error("from a step"); },
               []() -> std::chrono::microseconds { throw 1; },
               []() -> std::chrono::microseconds {
                 [NSException raise:NSGenericException format:@"from a step"];
                 return 0us;
               },
               [&] {
                 reached = 1;
                 reached.notify_all();
                 return 0us;
               }});
  reached.wait(0);
  EXPECT_EQ(reached, 1);
}

TEST(Queues, WorkThatThrowsDoesNotEndItsQueue) {
  Queues queues;
  const auto queue = queues.createSerial("org.keyvora.test.log");
  std::atomic<bool> ran = false;
  queue->async([] { throw std::runtime_error("from the work"); });
  queue->async([&ran] { ran = true; });
  EXPECT_TRUE(queue->drain(5s));
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace keyvora::macos
