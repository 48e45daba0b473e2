#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "hosts/simulated/host.h"
#include "platform/platform.h"
#include "runner/own_event_source.h"
#include "runner/runner.h"

namespace keyvora::testing {
namespace {

TEST(SharedRunnerTest, IsMadeOnceEvenByTwoThreadsAtATime) {
  for (int round = 0; round < 50; ++round) {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    const Runner* other = nullptr;
    std::thread thread([&] { other = &Runner::shared(); });
    const auto* mine = &Runner::shared();
    thread.join();
    EXPECT_EQ(mine, other);
  }
}

TEST(OwnEventSourceTest, IsMadeOnceEvenByTwoThreadsAtATime) {
  for (int round = 0; round < 50; ++round) {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    OwnEventSource source;
    const platform::EventSource* other = nullptr;
    std::thread thread([&] { other = source.get(); });
    const auto* mine = source.get();
    thread.join();
    EXPECT_NE(mine, nullptr);
    EXPECT_EQ(mine, other);
    EXPECT_EQ(host.failures.count(simulated::Call::createSource), 1U);
  }
}

TEST(OwnEventSourceTest, StaysNullWhenItCouldNotBeMade) {
  simulated::Host host;
  const platform::Scope scope(host.platform());
  host.failures.nth(simulated::Call::createSource, 1);
  OwnEventSource source;
  EXPECT_EQ(source.get(), nullptr);
  EXPECT_EQ(source.get(), nullptr);
  EXPECT_EQ(host.failures.count(simulated::Call::createSource), 1U);
}

}  // namespace
}  // namespace keyvora::testing
