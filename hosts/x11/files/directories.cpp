#include "hosts/x11/files/directories.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace keyvora::x11 {
namespace {

std::optional<std::string> absolute(const char* text) {
  if (text == nullptr || *text != '/') return std::nullopt;
  return std::string(text);
}

std::optional<std::string> passwordEntryHome() {
  std::vector<char> memory(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, memory.data(), memory.size(), &found) != 0 || found == nullptr) {
    return std::nullopt;
  }
  return absolute(entry.pw_dir);
}

}  // namespace

std::optional<std::string> homeDirectory() {
  if (auto home = absolute(std::getenv("HOME"))) return home;
  return passwordEntryHome();
}

std::optional<std::string> configurationDirectory() {
  if (auto directory = absolute(std::getenv("XDG_CONFIG_HOME"))) return directory;
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return *home + "/.config";
}

std::filesystem::path executableFile() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::filesystem::path partOf(const std::filesystem::path& program, const std::string& name) {
  auto beside = program.parent_path() / name;
  std::error_code ignored;
  if (std::filesystem::exists(beside, ignored)) return beside;
  return program.parent_path().parent_path() / "libexec" / "keyvora" / name;
}

}  // namespace keyvora::x11
