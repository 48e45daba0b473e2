#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// Directories of the user who runs the program. Any thread.
namespace keyvora::x11 {

/// HOME, or the home directory in the password database; none when neither is an absolute path. A string,
/// since a path parses itself again each time that one is made.
std::optional<std::string> homeDirectory();

/// The user's configuration directory: XDG_CONFIG_HOME, or `.config` in the home directory.
std::optional<std::string> configurationDirectory();

/// The path of the running program's file.
std::filesystem::path executableFile();

/// The path of another program of the same installation as `program`: in its folder, as in a build folder, or
/// in `libexec/keyvora` of the prefix.
std::filesystem::path partOf(const std::filesystem::path& program, const std::string& name);

}  // namespace keyvora::x11
