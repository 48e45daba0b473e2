#pragma once

#include <cstddef>

#include "mapping/mapping.h"

namespace keyvora::bench {

/// A document as people write it, with so many sequences of two to four letters, all different, and actions
/// of every kind.
Mapping document(std::size_t sequences);

}  // namespace keyvora::bench
