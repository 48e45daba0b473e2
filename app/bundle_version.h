#pragma once

#include <string>

#include "platform/bundles.h"

namespace keyvora {

/// The version as people write it (CFBundleShortVersionString); "dev" for a bundle that does not say.
std::string version(const platform::Bundle& bundle);

/// The version that updates are compared by (CFBundleVersion); "0" for a bundle that does not say.
std::string build(const platform::Bundle& bundle);

}  // namespace keyvora
