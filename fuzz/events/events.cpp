// Streams of events, reloads, focus changes, menus and jumps of the clock: at each step the tap must do the
// same as its reference model.

#include "fuzz/input.h"
#include "tests/tap/random_stream.h"
#include "tests/tap/reference_model.h"
#include "tests/tap/tap_rig.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace keyvora;
  constexpr std::size_t mostSteps = 150;
  FuzzedDataProvider input(data, size);
  const testing::Choose choose = [&input](std::size_t below) {
    return input.ConsumeIntegralInRange<std::size_t>(0, below - 1);
  };
  const auto stream = testing::makeStream(choose, std::min(mostSteps, size / 2));
  testing::TapRig rig(stream.mapping);
  testing::ReferenceModel model(stream.mapping);
  for (const auto& step : stream.steps) {
    fuzz::require(testing::play(rig, step) == testing::play(model, step), "the tap does what the model does");
  }
  return 0;
}
