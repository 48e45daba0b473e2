#pragma once

#include <string>

#include "platform/bundles.h"

namespace keyvora {

/// The version as people write it (CFBundleShortVersionString); "dev" for a bundle without one.
std::string version(const platform::Bundle& bundle);

/// The version by which updates are compared (CFBundleVersion); "0" for a bundle without one.
std::string build(const platform::Bundle& bundle);

}  // namespace keyvora
