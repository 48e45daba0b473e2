#include "tools/file.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <system_error>
#include <utility>

namespace keyvora::tools {
namespace {

/// The home directory as the application finds it: HOME, else the user database.
std::optional<std::filesystem::path> homeDirectory() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
  const auto* user = getpwuid(geteuid());
  if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/') return std::nullopt;
  return user->pw_dir;
}

/// All bytes up to the end; an error when the file cannot be read to its end.
std::variant<Source, Unreadable> readToEnd(std::istream& stream, const std::string& name) {
  constexpr std::streamsize step = std::streamsize{64} * 1024;
  std::string bytes;
  do {  // by read(), because iterators would throw the error
    const auto length = bytes.size();
    bytes.resize(length + step);
    stream.read(bytes.data() + length, step);
    bytes.resize(length + static_cast<std::size_t>(stream.gcount()));
  } while (stream);
  if (stream.bad()) return Unreadable{name + ": could not be read to its end"};
  return Source{name, std::move(bytes)};
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
  if (file == "-") return readToEnd(std::cin, "<standard input>");
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) return Unreadable{file + ": is a directory"};
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return Unreadable{file + ": " + std::strerror(errno != 0 ? errno : EIO)};
  return readToEnd(stream, file);
}

std::optional<std::filesystem::path> makeTemporaryFolder(const std::string& name) {
  std::error_code failed;
  const auto parent = std::filesystem::temp_directory_path(failed);
  if (failed) return std::nullopt;
  auto folder = (parent / (name + ".XXXXXX")).string();
  if (mkdtemp(folder.data()) == nullptr) return std::nullopt;
  return folder;
}

}  // namespace keyvora::tools
