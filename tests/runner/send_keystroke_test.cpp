#include "tests/runner/runner_fixture.h"

namespace keyvora::testing {
namespace {

using simulated::Call;
using simulated::TraceEntry;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr std::uint32_t down = 10;
constexpr std::uint32_t up = 11;

struct Case {
  const char* key;
  std::vector<std::string> modifiers;
  std::uint16_t code;
  std::uint64_t flags;
};

class SendKeystrokeTest : public RunnerTest {
 protected:
  std::vector<TraceEntry> pressing(const std::string& key, const std::vector<std::string>& modifiers) {
    runner.sendKeystroke(key, modifiers, "K  Name");
    return host.trace.take();
  }
};

TEST_F(SendKeystrokeTest, PressesTheKeyOnceWithTheModifiersAsFlags) {
  for (const auto& [key, modifiers, code, flags] : {
           Case{"a", {}, 0, 0},
           Case{"F12", {}, 111, 0},
           Case{"rEtUrN", {"Cmd", "SHIFT"}, 36, 0x120000},
           Case{"1", {"alt", "control", "alt"}, 18, 0xC0000},
           Case{"x", {"hyper", " cmd", "cmd ", ""}, 7, 0},
           Case{";", {"hyper", "ctrl"}, 41, 0x40000},
       }) {
    EXPECT_THAT(pressing(key, modifiers),
                ElementsAreArray({posted(process, down, code, flags), posted(process, up, code, flags),
                                  logged("K  Name (keystroke)")}))
        << key;
  }
}

TEST_F(SendKeystrokeTest, AKeyOutsideTheTableIsNamedAsWritten) {
  for (const std::string key : {"enter", "esc", "F13", "", " a", "A a", "\u00C9"}) {
    EXPECT_THAT(pressing(key, {"cmd"}), ElementsAreArray({logged("K  Name FAILED: no key code for " + key)}));
  }
  EXPECT_EQ(host.failures.count(Call::createSource), 0U);
}

TEST_F(SendKeystrokeTest, AMissingTargetIsTypedAtTheHardwareLevel) {
  host.applications.quit(process);
  EXPECT_THAT(pressing("a", {"cmd"}),
              ElementsAreArray({posted(std::nullopt, down, 0, 0x100000),
                                posted(std::nullopt, up, 0, 0x100000), logged("K  Name (keystroke)")}));
}

TEST_F(SendKeystrokeTest, WithoutASourceEventsHaveNoMarker) {
  host.failures.nth(Call::createSource, 1);
  for (int time = 0; time < 2; ++time) {
    EXPECT_THAT(pressing("a", {}),
                ElementsAreArray({posted(process, down, 0, 0, 0), posted(process, up, 0, 0, 0),
                                  logged("K  Name (keystroke)")}));
  }
  EXPECT_EQ(host.failures.count(Call::createSource), 1U) << "it is not tried again";
}

TEST_F(SendKeystrokeTest, AsksForTheTargetOnce) {
  pressing("a", {});
  EXPECT_EQ(host.failures.count(Call::running), 1U);
}

TEST_F(SendKeystrokeTest, TheKeyDownIsMadeBeforeTheKeyUp) {
  host.failures.event(0, true);
  pressing("a", {});
  EXPECT_EQ(host.failures.count(Call::createEvent), 1U) << "without it, the other is not tried";
  host.failures.clear();
  host.failures.event(0, false);
  pressing("a", {});
  EXPECT_EQ(host.failures.count(Call::createEvent), 3U);
}

TEST_F(SendKeystrokeTest, EventsThatCannotBeMadeEndItWithoutAWord) {
  for (const bool direction : {true, false}) {
    host.failures.clear();
    host.failures.event(0, direction);
    EXPECT_THAT(pressing("a", {}), IsEmpty());
  }
  EXPECT_EQ(host.failures.count(Call::running), 0U) << "the target is asked for after the events are made";
}

}  // namespace
}  // namespace keyvora::testing
