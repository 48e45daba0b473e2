#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>

namespace keyvora::test {

/// The unprivileged account of every Unix.
inline constexpr uid_t nobody = 65534;

/// Gives up root's rights, which override file permissions. Only for a child process, since it cannot be
/// undone.
inline void becomeNobody() {
  if (::geteuid() != 0) return;
  if (::setgid(nobody) != 0 || ::setuid(nobody) != 0) std::abort();
}

/// A directory, accessible to `nobody`; the destructor removes it with its content.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "keyvora-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
    ::chmod(name.c_str(), 0777);
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  /// The names of its entries.
  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      found.insert(entry.path().filename().string());
    }
    return found;
  }

 private:
  std::filesystem::path path_;
};

/// Sets the file's content, in place.
inline void write(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

/// The file's content; none when it cannot be read.
inline std::optional<std::string> content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// The permissions of the path itself, links not followed, as in `0644`.
inline mode_t modeOf(const std::filesystem::path& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

}  // namespace keyvora::test
