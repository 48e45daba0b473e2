#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/keyboard.h"

namespace keyvora::testing {

/// One thing that could be seen from outside, as words: {"report", "true", "HF"}, {"log", line}, {"enable"}
/// or
/// {"run", kind, payload..., label}, in which a list stands between "[" and "]".
using Happening = std::vector<std::string>;

/// What one step of a run did: how the event was decided (none when the step was no event) and all that could
/// be seen, in order.
struct StepResult {
  std::optional<platform::Verdict> verdict;
  std::vector<Happening> trace;

  friend bool operator==(const StepResult&, const StepResult&) = default;
};

/// For the messages of failing tests.
void PrintTo(const StepResult& result, std::ostream* out);

}  // namespace keyvora::testing
