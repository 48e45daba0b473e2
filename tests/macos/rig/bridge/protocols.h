#pragma once

#include "tests/macos/rig/bridge/abi.h"

namespace keyvora::rig::abi {

/// Makes protocols of clang's into objects of the runtime, those that they adopt included. Null is fine.
void adaptProtocols(Protocols* protocols);

}  // namespace keyvora::rig::abi
