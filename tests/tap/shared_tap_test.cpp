#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulated/host.h"
#include "mapping/mapping_store.h"
#include "platform/platform.h"
#include "tap/key_sequence_tap.h"
#include "tests/tap/expectations.h"

namespace keyvora::testing {
namespace {

TEST(SharedTapTest, IsMadeOnceEvenByTwoThreadsAtATime) {
  for (int round = 0; round < 50; ++round) {
    simulated::Host host;
    const platform::Scope scope(host.platform());
    const KeySequenceTap* other = nullptr;
    std::thread thread([&] { other = &KeySequenceTap::shared(); });
    const auto* mine = &KeySequenceTap::shared();
    thread.join();
    EXPECT_EQ(mine, other);
    EXPECT_EQ(mine, &KeySequenceTap::shared());
    EXPECT_FALSE(mine->installed());
  }
}

TEST(SharedTapTest, WorksOnTheSharedStoreAndRunner) {
  simulated::Host host;
  const platform::Scope scope(host.platform());
  auto& store = MappingStore::shared();
  host.files.write(store.url(), R"({"version": 1, "tabs": {}, "sequences": [
      {"keys": "H", "name": "Help", "action": {"kind": "keystroke", "key": "f1", "modifiers": []}}]})");
  store.reload();
  host.applications.front = "com.microsoft.Excel";
  ASSERT_TRUE(KeySequenceTap::shared().install());
  host.keyboard.tapOption();
  EXPECT_EQ(host.keyboard.type(key::h), platform::Verdict::swallow);
  EXPECT_EQ(host.trace.logged().back(), "H  Help (keystroke)");
}

}  // namespace
}  // namespace keyvora::testing
