#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <variant>
#include <vector>

#include "mapping/mapping.h"
#include "platform/keyboard.h"
#include "tests/tap/trace.h"

namespace keyvora::testing {

// The steps of a run.

struct Event {
  platform::KeyEvent event;
  bool targetIsFrontmost = true;
};
struct Advance {
  std::int64_t microseconds = 0;
};
struct Reload {
  Mapping mapping;
};
struct TrackMenu {
  bool open = false;
};
using Step = std::variant<Event, Advance, Reload, TrackMenu>;

/// A run: the initial document, and the steps.
struct Stream {
  Mapping mapping;
  std::vector<Step> steps;
};

/// Chooses a number below its argument, which is at least 1. The source of the choices is a random number
/// generator or a fuzzer's input.
using Choose = std::function<std::size_t(std::size_t)>;

/// Choices of a generator: on every system the same for the same seed.
Choose randomChoices(std::uint64_t seed);

/// A run of at least `steps` steps that reaches many decisions: few letters, short sequences, times close
/// to the timeouts.
Stream makeStream(const Choose& choose, std::size_t steps);

/// An event with a key that the streams use, without user data.
platform::KeyEvent makeEvent(const Choose& choose);

/// Plays a step on a `TapRig` or a `ReferenceModel`.
template <class Subject>
StepResult play(Subject& subject, const Step& step) {
  struct Player {
    Subject& subject;
    StepResult operator()(const Event& e) const { return subject.event(e.event, e.targetIsFrontmost); }
    StepResult operator()(const Advance& e) const { return subject.advance(e.microseconds); }
    StepResult operator()(const Reload& e) const { return subject.reload(e.mapping); }
    StepResult operator()(const TrackMenu& e) const { return subject.trackMenu(e.open); }
  };
  return std::visit(Player{subject}, step);
}

}  // namespace keyvora::testing
