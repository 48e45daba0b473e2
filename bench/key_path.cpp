// The cost of one event in the program: while idle, and as a letter of an armed sequence. The system is
// simulated, so this measures keyvora's part only.

#include <benchmark/benchmark.h>

#include <chrono>

#include "bench/documents.h"
#include "hosts/simulated/host.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "runner/runner.h"
#include "tap/key_sequence_tap.h"

namespace keyvora::bench {
namespace {

using platform::KeyEvent;
using namespace platform::event_flag;
using namespace platform::event_type;

using platform::key_code::escape, platform::key_code::h, platform::key_code::leftOption;

/// A tap on a simulated system that records nothing.
class Rig {
 public:
  explicit Rig(std::size_t sequences, const char* front) : mapping_(document(sequences)) {
    host_.applications.front = front;
    host_.trace.stop();
  }

  void handle(const KeyEvent& event) { benchmark::DoNotOptimize(tap_.handle(event.type, event)); }

  void arm() {
    handle({flagsChanged, leftOption, platform::event_flag::option, 0});
    handle({flagsChanged, leftOption, 0, 0});
  }

  /// Removes what has accumulated in the simulation.
  void tidy() { host_.files.remove("/Users/me/Library/Logs/keyvora.log"); }

 private:
  simulated::Host host_;
  platform::Scope scope_{host_.platform()};
  Mapping mapping_;
  Runner runner_;
  KeySequenceTap tap_{[this]() -> const Mapping& { return mapping_; }, runner_};
};

void idleEvents(benchmark::State& state, const char* front) {
  Rig rig(200, front);
  const KeyEvent down{keyDown, h, 0, 0};
  const KeyEvent up{keyUp, h, 0, 0};
  for (auto _ : state) {
    rig.handle(down);
    rig.handle(up);
  }
  state.SetItemsProcessed(2 * state.iterations());
  state.SetLabel("time is for two events, a key pressed and released");
}

void idleEventInTheTarget(benchmark::State& state) {
  idleEvents(state, "com.microsoft.Excel");
}
BENCHMARK(idleEventInTheTarget);

void idleEventElsewhere(benchmark::State& state) {
  idleEvents(state, "com.apple.finder");
}
BENCHMARK(idleEventElsewhere);

/// The first letter after a tap of Option: matched against every sequence, shown, and its timeout scheduled.
void armedLetter(benchmark::State& state) {
  Rig rig(static_cast<std::size_t>(state.range(0)), "com.microsoft.Excel");
  const KeyEvent letter{keyDown, h, 0, 0};
  int rounds = 0;
  for (auto _ : state) {
    rig.arm();
    const auto start = std::chrono::steady_clock::now();
    rig.handle(letter);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(taken.count());
    rig.handle({keyDown, escape, 0, 0});
    if (++rounds % 1000 == 0) rig.tidy();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(armedLetter)->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->UseManualTime()->Complexity();

/// Matching a letter, by itself.
void lookup(benchmark::State& state) {
  const auto mapping = document(static_cast<std::size_t>(state.range(0)));
  const std::vector<std::string> typed{"H"};
  for (auto _ : state) benchmark::DoNotOptimize(mapping.lookup(typed));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(lookup)->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->Complexity();

/// Reading the first letter of each sequence and nothing else.
void walk(benchmark::State& state) {
  const auto mapping = document(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (const auto& sequence : mapping.sequences) benchmark::DoNotOptimize(sequence.keys.front());
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(walk)->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->Complexity();

}  // namespace
}  // namespace keyvora::bench
