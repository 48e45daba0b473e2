#pragma once

#include "tests/macos/rig/bridge/abi.h"

namespace keyvora::rig::abi {

/// Converts protocols written by clang, and those they adopt, to objects of the runtime. Null is allowed.
void adaptProtocols(Protocols* protocols);

}  // namespace keyvora::rig::abi
