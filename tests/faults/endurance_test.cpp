// Long runs on the virtual clock: neither memory nor the number of scheduled blocks grows.

#include <gtest/gtest.h>

#include "app/keyvora.h"
#include "hosts/simulated/host.h"
#include "mapping/mapping_store.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "tap/key_sequence_tap.h"
#include "tests/mapping/counting_new.h"

namespace keyvora::testing {
namespace {

using platform::Verdict;

constexpr auto excel = "com.microsoft.Excel";
const std::filesystem::path mappings = "/Users/me/Library/Application Support/keyvora/mappings.json";
const std::filesystem::path logFile = "/Users/me/Library/Logs/keyvora.log";

/// How much more memory a run may need than the same run before it: less than a byte per step.
constexpr std::size_t tolerance = 4096;

std::string document(int timeout) {
  return R"({"version": 1, "timeoutMilliseconds": )" + std::to_string(timeout) +
         R"(, "tabs": {}, "sequences": [
      {"keys": "H B", "name": "Borders", "action": {"kind": "keystroke", "key": "b"}},
      {"keys": "H", "name": "Home", "action": {"kind": "keystroke", "key": "h"}}]})";
}

class EnduranceTest : public ::testing::Test {
 protected:
  EnduranceTest() {
    host.files.write(mappings, document(800));
    host.applications.start(excel, 77);
    host.applications.front = excel;
    keyvora = Keyvora::create();
    keyvora->applicationDidFinishLaunching();
    host.trace.stop();
  }

  /// The peak of the bytes in use during the work, above those at its start.
  template <class Work>
  std::size_t peakOf(Work work) {
    counting::reset();
    work();
    return counting::since().peakBytes;
  }

  /// Twelve events: ordinary typing, a sequence that fires, one that waits and times out.
  void twelveEvents() {
    using platform::key_code::b, platform::key_code::h, platform::key_code::leftOption;
    constexpr auto optionFlag = platform::event_flag::option;
    swallowed += host.keyboard.type(h) == Verdict::swallow ? 1 : 0;
    for (const auto second : {b, h}) {
      host.keyboard.changeFlags(leftOption, optionFlag);
      host.keyboard.changeFlags(leftOption, 0);
      swallowed += host.keyboard.type(h) == Verdict::swallow ? 1 : 0;
      if (second == b) swallowed += host.keyboard.type(b) == Verdict::swallow ? 1 : 0;
    }
    host.advance(1);
  }

  simulated::Host host;
  platform::Scope scope{host.platform()};
  std::shared_ptr<Keyvora> keyvora;
  std::size_t swallowed = 0;
};

TEST_F(EnduranceTest, AMillionEventsLeaveMemoryAsItWas) {
  constexpr std::size_t rounds = 1000;
  const auto thousandRounds = [this] {
    for (std::size_t i = 0; i < rounds; ++i) twelveEvents();
    host.files.remove(logFile);  // it grows, and is in memory here
  };
  thousandRounds();
  const auto first = peakOf(thousandRounds);
  const auto pending = host.mainLoop.pending();
  const auto rest = peakOf([&] {
    for (int i = 0; i < 82; ++i) thousandRounds();
  });
  EXPECT_EQ(swallowed, 84 * rounds * 3);
  EXPECT_LE(rest, first + tolerance);
  EXPECT_EQ(host.mainLoop.pending(), pending);
  EXPECT_EQ(host.keyboard.tapCount(), 1U);
}

TEST_F(EnduranceTest, TenThousandReloadsLeaveMemoryAsItWas) {
  const auto thousandReloads = [this] {
    for (int i = 0; i < 1000; ++i) {
      if (i % 2 == 0) {
        host.files.saveByRename(mappings, document(i));
      } else {
        host.files.write(mappings, document(i));
      }
      host.advance(0.25);
      ASSERT_EQ(MappingStore::shared().mapping().timeoutMilliseconds, i);
    }
    host.files.remove(logFile);
  };
  thousandReloads();
  const auto first = peakOf(thousandReloads);
  const auto rest = peakOf([&] {
    for (int i = 0; i < 8; ++i) thousandReloads();
  });
  EXPECT_LE(rest, first + tolerance);
  EXPECT_EQ(host.files.watchCount(), 1U);
  EXPECT_EQ(host.mainLoop.pending(), 0U);
}

}  // namespace
}  // namespace keyvora::testing
