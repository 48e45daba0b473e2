#pragma once

#include <string_view>

namespace keyvora::tools {

/// Whether a program with this name can be started from PATH.
bool onPath(std::string_view program);

}  // namespace keyvora::tools
