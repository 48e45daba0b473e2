#pragma once

#include <memory>

#include "platform/bundles.h"

namespace keyvora {

/// Opens the resource bundle that `module` finds, among a host's bundles; null when it is missing.
std::unique_ptr<platform::Bundle> openModule(platform::Bundles& bundles);

/// The resource bundle with the default mapping document, looked up once, on first access. Fatal when it is
/// missing: the program is not installed correctly. Any thread.
const platform::Bundle& module();

}  // namespace keyvora
