#pragma once

#include <chrono>
#include <ctime>

namespace keyvora::test {

/// The processor time that this process has used: what bounds are put on, for a busy machine adds nothing to
/// it.
inline std::chrono::duration<double> processorTime() {
  return std::chrono::duration<double>(static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
}

}  // namespace keyvora::test
