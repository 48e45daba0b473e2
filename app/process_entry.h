#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace keyvora::platform {
class Host;
}

namespace keyvora {

/// The exit status of a process that found another instance of the program running.
inline constexpr int secondInstanceStatus = 3;

/// The check before `processEntry`, once the host is chosen: none when the program may start, else the exit
/// status, after printing why. A process that only looks for updates may run beside another instance. Main
/// thread.
std::optional<int> refuseStart(platform::Host& host, std::span<const std::string_view> arguments);

/// The program from its start to its end, on the current host. `arguments` is the whole command line, the
/// program's name included; "--probe-updates" anywhere in it asks for an update check whose answer ends the
/// process, and everything else is ignored. Returns the exit status when the main loop returns. Main thread.
int processEntry(std::span<const std::string_view> arguments);

}  // namespace keyvora
