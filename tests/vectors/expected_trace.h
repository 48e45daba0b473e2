#pragma once

#include <optional>
#include <vector>

#include "hosts/simulated/trace.h"
#include "tests/vectors/vector_kind.h"

namespace keyvora::vectors {

/// The entries that a line expects in the simulated host's trace: `["post", process or null, event]`,
/// `["sleep", microseconds]`, `["press", element]`, `["log", line]`.
std::vector<simulated::TraceEntry> expectedTrace(const Line& expect);

/// None when the two are equal.
std::optional<Mismatch> compare(const std::vector<simulated::TraceEntry>& expected,
                                const std::vector<simulated::TraceEntry>& actual);

/// A keyboard event: `type`, `keyCode`, `flags`, `userData`.
platform::KeyEvent asKeyEvent(const Line& value);

}  // namespace keyvora::vectors
