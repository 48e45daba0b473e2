#pragma once

#include <string>

namespace keyvora::rig {

/// Carries out one command of a script and returns its answer. Called on the script's thread, or before
/// `main` on the main thread.
std::string perform(const std::string& line);

/// Plays the commands from the socket that the environment names: up to "go" at once, the others on a
/// thread. Does nothing without such a socket.
void beginCommands();

}  // namespace keyvora::rig
