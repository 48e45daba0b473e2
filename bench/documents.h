#pragma once

#include <cstddef>

#include "mapping/mapping.h"

namespace keyvora::bench {

/// A document like a user's, with this many sequences of two to four letters, all different, and actions of
/// every kind.
Mapping document(std::size_t sequences);

}  // namespace keyvora::bench
