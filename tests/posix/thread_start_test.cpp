// Behaviour when the system gives no threads.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <semaphore>
#include <string>

#include "hosts/posix/queues.h"
#include "tests/posix/no_threads.h"

namespace keyvora::posix {
namespace {

using namespace std::chrono_literals;

/// Longer than anything here takes: only a failing test reaches it.
constexpr auto limit = 20s;

TEST(ThreadStartTest, WorkOfASerialQueueWaitsForAThread) {
  Queues queues;
  std::unique_ptr<platform::SerialQueue> queue;
  std::string ran;
  {
    const NoThreads refusal;
    queue = queues.createSerial("org.keyvora.test");
    queue->async([&ran] { ran += "1"; });
    EXPECT_FALSE(queue->drain(limit)) << "and without waiting";
    EXPECT_EQ(refusal.refused(), 3);
  }
  EXPECT_EQ(ran, "");
  queue->async([&ran] { ran += "2"; });
  EXPECT_TRUE(queue->drain(limit));
  EXPECT_EQ(ran, "12");
}

TEST(ThreadStartTest, DrainingAsksForAThreadAgain) {
  Queues queues;
  std::unique_ptr<platform::SerialQueue> queue;
  bool ran = false;
  {
    const NoThreads refusal;
    queue = queues.createSerial("org.keyvora.test");
    EXPECT_TRUE(queue->drain(limit)) << "there is nothing to wait for";
    queue->async([&ran] { ran = true; });
  }
  EXPECT_TRUE(queue->drain(limit));
  EXPECT_TRUE(ran);
}

TEST(ThreadStartTest, AQueueThatNeverGotAThreadEnds) {
  const NoThreads refusal;
  Queues queues;
  queues.createSerial("org.keyvora.test")->async([] { FAIL() << "there is no thread"; });
}

TEST(ThreadStartTest, APlanWaitsForAThread) {
  std::counting_semaphore<2> walked(0);
  const auto step = [&walked]() -> std::chrono::microseconds {
    walked.release();
    return {};
  };
  Queues queues;
  {
    const NoThreads refusal;
    queues.walk({step});
    EXPECT_EQ(refusal.refused(), 1);
  }
  queues.walk({step});
  EXPECT_TRUE(walked.try_acquire_for(limit));
  EXPECT_TRUE(walked.try_acquire_for(limit));
}

}  // namespace
}  // namespace keyvora::posix
