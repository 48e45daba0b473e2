#pragma once

#include <string>

namespace keyvora::rig {

/// Carries one command of a script out and returns its answer. On the thread that plays the script, or before
/// `main` on the main thread.
std::string perform(const std::string& line);

/// Plays the commands that come over the socket that the environment names, up to "go", and the others on a
/// thread of their own. Does nothing without such a socket.
void beginCommands();

}  // namespace keyvora::rig
