#pragma once

#include <string>

namespace keyvora::posix {

/// To be called first on a thread of ours: names it for debuggers, and leaves signals to the main thread.
void prepareThread(const std::string& label);

}  // namespace keyvora::posix
