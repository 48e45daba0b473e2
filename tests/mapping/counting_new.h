#pragma once

#include <cstddef>

/// Counts this program's allocations by operator new since the last reset.
namespace keyvora::counting {

struct Allocations {
  std::size_t count = 0;
  /// The peak of allocated bytes, above those at the reset.
  std::size_t peakBytes = 0;
};

void reset();
Allocations since();

}  // namespace keyvora::counting
