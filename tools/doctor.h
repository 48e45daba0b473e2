#pragma once

#include <ostream>

#include "platform/platform.h"

namespace keyvora::tools {

/// Writes facts about this machine and the user's document, and what keeps sequences from working. True
/// when nothing does. Main thread.
bool examine(const platform::Platform& machine, std::ostream& out);

}  // namespace keyvora::tools
