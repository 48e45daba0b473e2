#pragma once

#include <cstddef>

/// Counts what operator new hands out in this program, since the counters were last reset.
namespace keyvora::counting {

struct Allocations {
  std::size_t count = 0;
  /// The most bytes that were handed out at one time beyond what was at the reset.
  std::size_t peakBytes = 0;
};

void reset();
Allocations since();

}  // namespace keyvora::counting
