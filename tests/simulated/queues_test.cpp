#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

using std::chrono::microseconds;
using testing::ElementsAre;
using testing::IsEmpty;

struct SimulatedQueuesTest : testing::Test {
  Host host;
  std::vector<std::string> ran;

  platform::PlanStep step(std::string name, int sleep) {
    return [this, name = std::move(name), sleep] {
      ran.push_back(name + " at " + std::to_string(host.mainLoop.now().count()));
      return microseconds(sleep);
    };
  }
};

TEST_F(SimulatedQueuesTest, APlanIsWalkedOnTheClockFromTheNextAdvanceOn) {
  host.queues.walk({step("a", 150), step("b", 0), step("c", 80)});
  EXPECT_THAT(ran, IsEmpty());
  host.advance(149e-6);
  EXPECT_THAT(ran, ElementsAre("a at 0"));
  host.advance(1);
  EXPECT_THAT(ran, ElementsAre("a at 0", "b at 150", "c at 150"));
  EXPECT_THAT(host.trace.of<trace::Slept>(),
              ElementsAre(trace::Slept{microseconds(150)}, trace::Slept{microseconds(80)}));
}

TEST_F(SimulatedQueuesTest, PlansGivenAtOnceInterleave) {
  host.queues.walk({step("a1", 100), step("a2", 100), step("a3", 0)});
  host.queues.walk({step("b1", 150), step("b2", 0)});
  host.advance(1);
  EXPECT_THAT(ran, ElementsAre("a1 at 0", "b1 at 0", "a2 at 100", "b2 at 150", "a3 at 200"));
}

TEST_F(SimulatedQueuesTest, InLineAPlanIsWalkedAtOnceAndTheSleepsAreRecorded) {
  host.queues.walking = Queues::Walking::inLine;
  host.queues.walk({step("a", 150), step("b", 80)});
  EXPECT_THAT(ran, ElementsAre("a at 0", "b at 0"));
  EXPECT_THAT(host.trace.of<trace::Slept>(),
              ElementsAre(trace::Slept{microseconds(150)}, trace::Slept{microseconds(80)}));
}

TEST_F(SimulatedQueuesTest, BackgroundWorkIsOffTheMainThread) {
  std::vector<bool> onMain;
  const auto ask = [&] { onMain.push_back(host.mainLoop.isMainThread()); };
  host.queues.walk({[&] {
    ask();
    return microseconds(0);
  }});
  host.advance(0);
  host.queues.createSerial("queue")->async(ask);
  EXPECT_THAT(onMain, ElementsAre(false, false));
  EXPECT_TRUE(host.mainLoop.isMainThread());
}

TEST_F(SimulatedQueuesTest, SerialWorkRunsInsideAsyncInOrderOfSubmission) {
  const auto queue = host.queues.createSerial("queue");
  queue->async([&] {
    queue->async([&] { ran.push_back("inner"); });
    ran.push_back("outer");
  });
  EXPECT_THAT(ran, ElementsAre("outer", "inner"));
}

TEST_F(SimulatedQueuesTest, HeldWorkWaitsForItsRelease) {
  const auto queue = host.queues.createSerial("queue");
  EXPECT_TRUE(queue->drain(std::chrono::seconds(1)));
  host.queues.hold();
  EXPECT_TRUE(queue->drain(std::chrono::seconds(1))) << "nothing waits yet";
  queue->async([&] { ran.push_back("one"); });
  queue->async([&] { ran.push_back("two"); });
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_FALSE(queue->drain(std::chrono::seconds(1)));
  host.queues.release();
  EXPECT_THAT(ran, ElementsAre("one", "two"));
  EXPECT_TRUE(queue->drain(std::chrono::seconds(1)));
}

TEST_F(SimulatedQueuesTest, AQueueIsSerialForManyThreads) {
  const auto queue = host.queues.createSerial("queue");
  int count = 0;  // without a lock: the queue protects it
  const auto submit = [&] {
    for (int n = 0; n < 250; ++n) queue->async([&count] { ++count; });
  };
  std::array threads{std::thread(submit), std::thread(submit), std::thread(submit), std::thread(submit)};
  for (auto& thread : threads) thread.join();
  EXPECT_TRUE(queue->drain(std::chrono::seconds(10)));
  EXPECT_EQ(count, 1000);
}

TEST_F(SimulatedQueuesTest, RemembersTheLabels) {
  const auto one = host.queues.createSerial("one");
  const auto two = host.queues.createSerial("two");
  EXPECT_THAT(host.queues.labels(), ElementsAre("one", "two"));
}

}  // namespace
}  // namespace keyvora::simulated
