#pragma once

#include <span>
#include <string_view>

namespace keyvora {

/// The program from its start to its end, on the current host. `arguments` is the whole command line, the
/// program's name included; "--probe-updates" anywhere in it asks for an update check whose answer ends the
/// process, and everything else is ignored. Returns the exit status when the main loop returns. Main thread.
int processEntry(std::span<const std::string_view> arguments);

}  // namespace keyvora
