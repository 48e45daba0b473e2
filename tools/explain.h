#pragma once

#include <string>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// What typing letters after a tap of Option does, line by line for a person.
struct Explanation {
  std::string text;
  /// Whether a sequence fires in the end.
  bool fires = false;
};

/// Types the letters into a rehearsal, one right after another, and then nothing more. Each letter is one
/// that a key types.
Explanation explain(const std::vector<std::string>& letters, const Mapping& mapping);

}  // namespace keyvora::tools
