#pragma once

#include <string_view>

namespace keyvora::tools {

/// Whether PATH has an executable program with this name.
bool onPath(std::string_view program);

}  // namespace keyvora::tools
