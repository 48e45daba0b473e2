#pragma once

#include "platform/bundles.h"

namespace keyvora {

/// The resource bundle with the default mapping document, looked up once, on first access. Fatal when it is
/// missing: the program is not installed correctly. Any thread.
const platform::Bundle& module();

}  // namespace keyvora
