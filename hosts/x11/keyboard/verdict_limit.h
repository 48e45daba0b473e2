#pragma once

#include <chrono>

namespace keyvora::x11 {

/// How long the main thread may take with an event before the keyboard goes on without it.
inline constexpr std::chrono::milliseconds verdictLimit{1000};

}  // namespace keyvora::x11
