#pragma once

#include <string>

#include "mapping/mapping.h"

namespace keyvora {

/// The mapping as a JSON document in UTF-8, on one line: keys sorted by their bytes, `/` not escaped, absent
/// optionals left out, an action's `modifiers` always written. Decoding it gives an equal mapping.
std::string encode(const Mapping& mapping);

}  // namespace keyvora
