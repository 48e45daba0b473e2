#pragma once

#include <memory>

#include "platform/host.h"

namespace keyvora::tools {

/// Makes the host through which a command asks the programs that run; null when the program was built
/// without one.
using HostMaker = std::unique_ptr<platform::Host> (*)();

/// The one that this program was built with.
HostMaker builtHost();

}  // namespace keyvora::tools
