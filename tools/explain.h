#pragma once

#include <string>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// The effect of typing letters after a tap of Option, in lines for people.
struct Explanation {
  std::string text;
  /// Whether a sequence fires at the end.
  bool fires = false;
};

/// Types the letters into a rehearsal without pauses, and then waits. Each letter must be one that a key
/// types.
Explanation explain(const std::vector<std::string>& letters, const Mapping& mapping);

}  // namespace keyvora::tools
