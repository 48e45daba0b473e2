#include "tools/file.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace keyvora::tools {
namespace {

/// The home directory as the application finds it: HOME, else the user database.
std::optional<std::filesystem::path> homeDirectory() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
  const auto* user = getpwuid(geteuid());
  if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/') return std::nullopt;
  return user->pw_dir;
}

std::string bytesOf(std::istream& stream) {
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace

std::optional<std::filesystem::path> userDocument() {
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return *home / "Library/Application Support/keyvora/mappings.json";
}

std::optional<std::filesystem::path> userLog() {
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return *home / "Library/Logs/keyvora.log";
}

std::optional<std::string> ownDocumentThatExists() {
  const auto own = userDocument();
  std::error_code ignored;
  if (!own || !std::filesystem::exists(*own, ignored)) return std::nullopt;
  return own->string();
}

std::variant<Source, Unreadable> readFile(const std::string& file) {
  if (file == "-") return Source{"<standard input>", bytesOf(std::cin)};
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) return Unreadable{file + ": is a directory"};
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return Unreadable{file + ": " + std::strerror(errno != 0 ? errno : EIO)};
  auto bytes = bytesOf(stream);
  if (stream.bad()) return Unreadable{file + ": could not be read to its end"};
  return Source{file, std::move(bytes)};
}

}  // namespace keyvora::tools
