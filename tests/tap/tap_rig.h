#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/host.h"
#include "mapping/mapping.h"
#include "platform/platform.h"
#include "runner/runner.h"
#include "tap/key_sequence_tap.h"
#include "tests/tap/trace.h"

namespace keyvora::testing {

/// A tap installed on a simulated host, with its own document and a runner that only records calls.
/// Collects all visible effects in order.
class TapRig {
 public:
  explicit TapRig(Mapping mapping);

  /// One event of the user.
  StepResult event(const platform::KeyEvent& event, bool targetIsFrontmost);

  /// Advances the clock.
  StepResult advance(std::int64_t microseconds);

  /// Replaces the current document.
  StepResult reload(Mapping mapping);

  /// Opens or closes a menu of keyvora.
  StepResult trackMenu(bool open);

  // In the target, without user data:

  /// A key goes down.
  StepResult keyDown(std::uint16_t keyCode, std::uint64_t flags = 0);
  /// A key comes up.
  StepResult keyUp(std::uint16_t keyCode, std::uint64_t flags = 0);
  /// A modifier key changes; `flags` are the flags after that.
  StepResult flagsChanged(std::uint16_t keyCode, std::uint64_t flags);
  /// Left Option down and up with nothing in between; returns the result of the release.
  StepResult tapOption();

  [[nodiscard]] simulated::Host& host() { return host_; }
  [[nodiscard]] KeySequenceTap& tap() { return *tap_; }

  /// Destroys the tap early.
  void destroyTap() { tap_.reset(); }

 private:
  class NotingRunner;

  /// Appends what the host has recorded since the last call.
  void collect();
  void note(Happening happening);
  StepResult result(std::optional<platform::Verdict> verdict);

  simulated::Host host_;
  platform::Scope scope_;
  Mapping mapping_;
  std::unique_ptr<Runner> runner_;
  std::unique_ptr<KeySequenceTap> tap_;
  std::vector<Happening> trace_;
};

}  // namespace keyvora::testing
