#include "tests/runner/runner_fixture.h"

namespace keyvora::testing {
namespace {

using simulated::Call;
using simulated::TraceEntry;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using Trace = std::vector<TraceEntry>;

constexpr std::uint32_t down = 10;
constexpr std::uint32_t up = 11;
constexpr std::uint32_t changed = 12;

class SendKeyTipsTest : public RunnerTest {
 protected:
  SendKeyTipsTest() { host.queues.walking = simulated::Queues::Walking::inLine; }

  Trace typing(const std::string& keys, const std::string& name) {
    runner.sendKeyTips(keys, name);
    return host.trace.take();
  }

  static Trace leadIn(std::optional<platform::ProcessIdentifier> target = process,
                      std::int64_t userData = marker) {
    return {posted(target, changed, 56, 0x20000, userData), posted(target, changed, 58, 0xA0000, userData),
            posted(target, changed, 58, 0x20000, userData), posted(target, changed, 56, 0, userData),
            slept(150'000)};
  }

  static Trace joined(Trace first, const Trace& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
  }
};

TEST_F(SendKeyTipsTest, TypesTheCharactersBehindTheLeadIn) {
  EXPECT_THAT(typing("h x", "HX  Name"),
              ElementsAreArray(
                  joined(leadIn(), {posted(process, down, 4, 0), posted(process, up, 4, 0), slept(80'000),
                                    posted(process, down, 7, 0), posted(process, up, 7, 0), slept(80'000),
                                    logged("HX  Name (keytips h x)")})));
}

TEST_F(SendKeyTipsTest, WithoutCharactersOnlyTheLeadInIsTyped) {
  for (const std::string keys : {"", " ", "\t \n"}) {
    EXPECT_THAT(typing(keys, "L"), ElementsAreArray(joined(leadIn(), {logged("L (keytips " + keys + ")")})));
  }
}

TEST_F(SendKeyTipsTest, ACharacterWithoutAKeyIsNamedAndNothingIsTyped) {
  EXPECT_THAT(typing("ab!", "L"), ElementsAreArray({logged("L FAILED: no key code for !")}));
  EXPECT_THAT(typing("a\u00E9?", "L"), ElementsAreArray({logged("L FAILED: no key code for \u00C9")}));
  EXPECT_EQ(host.failures.count(Call::createSource), 0U);
  EXPECT_EQ(host.failures.count(Call::walk), 0U);
}

TEST_F(SendKeyTipsTest, AMissingTargetIsTypedAtTheHardwareLevel) {
  host.applications.quit(process);
  const std::optional<platform::ProcessIdentifier> none;
  EXPECT_THAT(typing("h", "L"),
              ElementsAreArray(joined(leadIn(none), {posted(none, down, 4, 0), posted(none, up, 4, 0),
                                                     slept(80'000), logged("L (keytips h)")})));
}

TEST_F(SendKeyTipsTest, WithoutASourceEventsHaveNoMarker) {
  host.failures.nth(Call::createSource, 1);
  const auto expected = joined(
      leadIn(process, 0),
      {posted(process, down, 4, 0, 0), posted(process, up, 4, 0, 0), slept(80'000), logged("L (keytips h)")});
  EXPECT_THAT(typing("h", "L"), ElementsAreArray(expected));
  EXPECT_THAT(typing("h", "L"), ElementsAreArray(expected)) << "and it is not tried again";
  EXPECT_EQ(host.failures.count(Call::createSource), 1U);
}

TEST_F(SendKeyTipsTest, LeadInEventsThatCannotBeMadeAreSkipped) {
  host.failures.event(56, true);
  host.failures.event(58, false);
  EXPECT_THAT(typing("", "L"),
              ElementsAreArray({posted(process, changed, 58, 0xA0000), posted(process, changed, 56, 0),
                                slept(150'000), logged("L (keytips )")}));
}

TEST_F(SendKeyTipsTest, CharactersThatCannotBeMadeAreSkippedWithoutAPause) {
  host.failures.event(4, true);
  host.failures.event(7, false);
  EXPECT_THAT(typing("hax", "L"),
              ElementsAreArray(joined(leadIn(), {posted(process, down, 0, 0), posted(process, up, 0, 0),
                                                 slept(80'000), logged("L (keytips hax)")})));
}

TEST_F(SendKeyTipsTest, WithoutAnyEventThePauseAndTheLineRemain) {
  host.failures.always(Call::createEvent);
  EXPECT_THAT(typing("hx", "L"), ElementsAreArray({slept(150'000), logged("L (keytips hx)")}));
}

class SendKeyTipsOnTheClockTest : public RunnerTest {
 protected:
  /// The key codes of the key-downs so far.
  std::vector<int> typed() {
    std::vector<int> codes;
    for (const auto& entry : host.trace.of<simulated::trace::Posted>()) {
      if (entry.event.type == down) codes.push_back(entry.event.keyCode);
    }
    return codes;
  }
};

TEST_F(SendKeyTipsOnTheClockTest, ReturnsAtOnceAndTypesInTheBackground) {
  runner.sendKeyTips("hx", "L");
  EXPECT_THAT(host.trace.take(), IsEmpty());
  host.advance(0);
  EXPECT_EQ(host.trace.of<simulated::trace::Posted>().size(), 4U);
  host.advance(0.149999);
  EXPECT_THAT(typed(), IsEmpty());
  host.advance(0.000001);
  EXPECT_THAT(typed(), ElementsAreArray({4}));
  host.advance(0.079999);
  EXPECT_THAT(typed(), ElementsAreArray({4}));
  host.advance(0.000001);
  EXPECT_THAT(typed(), ElementsAreArray({4, 7}));
  host.advance(0.079999);
  EXPECT_THAT(host.trace.logged(), IsEmpty());
  host.advance(0.000001);
  EXPECT_THAT(host.trace.logged(), ElementsAreArray({"L (keytips hx)"}));
}

TEST_F(SendKeyTipsOnTheClockTest, TheTargetIsChosenBeforeTyping) {
  runner.sendKeyTips("h", "L");
  host.applications.quit(process);
  host.applications.start("com.microsoft.Excel", 99);
  host.advance(1);
  for (const auto& entry : host.trace.of<simulated::trace::Posted>()) EXPECT_EQ(entry.process, process);
}

TEST_F(SendKeyTipsOnTheClockTest, TheSourceIsMadeInTheBackground) {
  runner.sendKeyTips("h", "L");
  EXPECT_EQ(host.failures.count(Call::createSource), 0U);
  host.advance(0);
  EXPECT_EQ(host.failures.count(Call::createSource), 1U);
}

TEST_F(SendKeyTipsOnTheClockTest, TwoAtATimeRunAlongsideEachOther) {
  runner.sendKeyTips("hhh", "first");
  host.advance(0.04);
  runner.sendKeyTips("x", "second");
  host.advance(1);
  EXPECT_THAT(typed(), ElementsAreArray({4, 7, 4, 4}));
  EXPECT_THAT(host.trace.logged(), ElementsAreArray({"second (keytips x)", "first (keytips hhh)"}));
  EXPECT_EQ(host.failures.count(Call::createSource), 1U);
}

TEST_F(SendKeyTipsOnTheClockTest, TypingOutlivesTheRunner) {
  {
    Runner passing;
    passing.sendKeyTips("h", "L");
  }
  host.advance(1);
  EXPECT_THAT(host.trace.logged(), ElementsAreArray({"L (keytips h)"}));
}

}  // namespace
}  // namespace keyvora::testing
