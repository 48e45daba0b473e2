#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/keyboard.h"

namespace keyvora::testing {

/// One visible effect, as words: {"report", "true", "HF"}, {"log", line}, {"enable"} or {"run", kind,
/// payload..., label}. A list is between "[" and "]".
using Happening = std::vector<std::string>;

/// The result of one step of a run: the verdict on the event (none when the step was not an event) and all
/// visible effects, in order.
struct StepResult {
  std::optional<platform::Verdict> verdict;
  std::vector<Happening> trace;

  friend bool operator==(const StepResult&, const StepResult&) = default;
};

/// Used in messages of failing tests.
void PrintTo(const StepResult& result, std::ostream* out);

}  // namespace keyvora::testing
