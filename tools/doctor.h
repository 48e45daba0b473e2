#pragma once

#include <ostream>

#include "platform/platform.h"

namespace keyvora::tools {

/// Writes what is known of this machine, of the user's document and of what keeps sequences from working.
/// True when nothing does. Main thread.
bool examine(const platform::Platform& machine, std::ostream& out);

}  // namespace keyvora::tools
