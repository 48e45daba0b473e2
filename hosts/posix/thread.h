#pragma once

#include <string>

namespace keyvora::posix {

/// To be called first on each background thread: names it for debuggers, and blocks signals, which the main
/// thread handles.
void prepareThread(const std::string& label);

}  // namespace keyvora::posix
