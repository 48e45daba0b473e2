#include <gtest/gtest.h>

#include <algorithm>

#include "runner/own_event_marker.h"
#include "tests/tap/expectations.h"
#include "tests/tap/random_stream.h"
#include "tests/tap/reference_model.h"
#include "tests/tap/tap_rig.h"

/// Random runs compared with the reference model. A failure prints the seed, which repeats the run.
namespace keyvora::testing {
namespace {

using platform::Verdict;

constexpr std::uint64_t streams = 2000;
constexpr std::size_t stepsEach = 60;
constexpr std::int64_t longSilence = 60'000'000;

/// Whether the tap is armed after these effects, given its state `armed` before.
bool armedAfter(bool armed, const StepResult& result) {
  for (const auto& happening : result.trace) {
    if (happening.front() == "report") armed = happening[1] == "true";
  }
  return armed;
}

void expectSafe(const Event& event, bool armedBefore, const StepResult& result) {
  if (result.verdict != Verdict::swallow) return;
  EXPECT_TRUE(event.targetIsFrontmost) << "swallowed an event of another application";
  EXPECT_TRUE(armedBefore) << "swallowed an event while idle";
  EXPECT_EQ(event.event.type, platform::event_type::keyDown) << "swallowed something else than a key-down";
}

TEST(TapPropertyTest, DoesWhatTheModelDoesAndNoHarm) {
  std::size_t swallowed = 0;
  std::size_t fired = 0;
  for (std::uint64_t seed = 1; seed <= streams; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto stream = makeStream(randomChoices(seed), stepsEach);
    TapRig rig(stream.mapping);
    ReferenceModel model(stream.mapping);
    bool armed = false;
    for (std::size_t i = 0; i < stream.steps.size(); ++i) {
      SCOPED_TRACE("step " + std::to_string(i));
      const auto& step = stream.steps[i];
      const auto result = play(rig, step);
      ASSERT_EQ(result, play(model, step));
      if (const auto* event = std::get_if<Event>(&step)) expectSafe(*event, armed, result);
      armed = armedAfter(armed, result);
      ASSERT_EQ(armed, model.armed());
      if (result.verdict == Verdict::swallow) ++swallowed;
      fired += static_cast<std::size_t>(
          std::ranges::count_if(result.trace, [](const auto& happening) { return happening[0] == "run"; }));
    }

    // A sequence with letters ends after a time without events; an armed tap without letters keeps waiting.
    const bool begun = model.anyLetterTyped();
    rig.trackMenu(false);
    model.trackMenu(false);
    const auto silence = rig.advance(longSilence);
    ASSERT_EQ(silence, model.advance(longSilence));
    ASSERT_EQ(armedAfter(armed, silence), armed && !begun);
    if (HasFailure()) return;
  }
  // The streams must reach states with decisions. The bounds are far below what they reach, because each new
  // choice of the generator changes the numbers.
  EXPECT_GT(swallowed, streams);
  EXPECT_GT(fired, streams / 10);
}

TEST(TapPropertyTest, OurOwnEventsChangeNothing) {
  for (std::uint64_t seed = 1; seed <= streams / 4; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto choose = randomChoices(seed);
    const auto stream = makeStream(choose, stepsEach);

    std::vector<StepResult> undisturbed;
    {
      TapRig rig(stream.mapping);
      for (const auto& step : stream.steps) undisturbed.push_back(play(rig, step));
    }
    TapRig rig(stream.mapping);
    for (std::size_t i = 0; i < stream.steps.size(); ++i) {
      SCOPED_TRACE("step " + std::to_string(i));
      auto ours = makeEvent(choose);
      ours.userData = ownEventMarker;
      ASSERT_EQ(rig.event(ours, choose(4) != 0), passes());
      ASSERT_EQ(play(rig, stream.steps[i]), undisturbed[i]);
    }
  }
}

}  // namespace
}  // namespace keyvora::testing
