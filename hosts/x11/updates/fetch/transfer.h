#pragma once

#include <string>

#include "appcast/fetcher.h"

namespace keyvora::x11 {

/// Fetches one document by HTTP or HTTPS as described at FetchProcess, and waits for it. Calls `isAwaited` at
/// least every second and fails when it returns false.
appcast::Fetched transfer(const std::string& address, const appcast::FetchLimits& limits,
                          bool (*isAwaited)());

}  // namespace keyvora::x11
