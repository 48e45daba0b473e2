#import "hosts/macos/queues.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
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
  // Each waits for the other's first step: one after the other they would never end.
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

}  // namespace
}  // namespace keyvora::macos
