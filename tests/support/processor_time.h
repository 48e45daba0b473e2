#pragma once

#include <chrono>
#include <ctime>

namespace keyvora::test {

/// The processor time used by this process. Use it for time limits, since other processes do not add to it.
inline std::chrono::duration<double> processorTime() {
  return std::chrono::duration<double>(static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
}

}  // namespace keyvora::test
