#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mapping/mapping.h"
#include "platform/keyboard.h"
#include "tests/tap/trace.h"

namespace keyvora::testing {

/// A second implementation of the tap's behaviour, as a table of events and states, which shares no code
/// with the tap. Simple and slow. Keys of sequences must be ASCII.
class ReferenceModel {
 public:
  explicit ReferenceModel(Mapping mapping) : mapping_(std::move(mapping)) {}

  StepResult event(const platform::KeyEvent& event, bool targetIsFrontmost);

  /// Advances the clock. A deadline at the end of the span is included.
  StepResult advance(std::int64_t microseconds);

  /// Replaces the current document.
  StepResult reload(Mapping mapping);

  /// Opens or closes a menu of keyvora: no timeout expires while it is open.
  StepResult trackMenu(bool open);

  [[nodiscard]] bool armed() const { return armed_; }
  [[nodiscard]] bool anyLetterTyped() const { return !typed_.empty(); }

 private:
  struct Pending {
    std::int64_t deadline = 0;
    std::optional<Sequence> sequence;
  };

  void arm();
  void disarm();
  void letter(char letter);
  void fire(const Sequence& sequence);
  void runOut();
  StepResult result(std::optional<platform::Verdict> verdict);

  Mapping mapping_;
  std::int64_t now_ = 0;
  bool menuOpen_ = false;
  bool armed_ = false;
  bool alone_ = false;
  std::string typed_;
  std::optional<Pending> pending_;
  std::vector<Happening> trace_;
};

}  // namespace keyvora::testing
