#pragma once

#include <filesystem>
#include <optional>

/// Where things are for the user that runs the program. Any thread.
namespace keyvora::x11 {

/// HOME, or the home directory of the user's password entry; none when neither is an absolute path.
std::optional<std::filesystem::path> homeDirectory();

/// Where the user's settings are: XDG_CONFIG_HOME, or `.config` in the home directory.
std::optional<std::filesystem::path> configurationDirectory();

/// The file of the running program.
std::filesystem::path executableFile();

}  // namespace keyvora::x11
