#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace keyvora::x11 {

/// Identifies a file and the state of its content, as precisely as the file system's clock allows.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modified = 0;  ///< nanoseconds
  nlink_t links = 0;

  [[nodiscard]] bool isSameFile(const FileStamp& other) const {
    return device == other.device && inode == other.inode;
  }

  [[nodiscard]] bool hasSameContent(const FileStamp& other) const {
    return isSameFile(other) && size == other.size && modified == other.modified;
  }

  static FileStamp of(const struct stat& status) {
    const auto nanoseconds = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
    return {status.st_dev, status.st_ino, status.st_size, nanoseconds, status.st_nlink};
  }

  /// For the file at the path, links followed; none when there is none.
  static std::optional<FileStamp> of(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return of(status);
  }
};

}  // namespace keyvora::x11
