#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <optional>

namespace keyvora::x11 {

/// Identifies a file and the state of its content, as precisely as the file system's clock allows.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modified = 0;  ///< nanoseconds
  std::int64_t changed = 0;   ///< nanoseconds; the content, the names or the attributes
  nlink_t links = 0;

  [[nodiscard]] bool isSameFile(const FileStamp& other) const {
    return device == other.device && inode == other.inode;
  }

  [[nodiscard]] bool hasSameContent(const FileStamp& other) const {
    return isSameFile(other) && size == other.size && modified == other.modified;
  }

  /// Whether nothing at all happened to it.
  [[nodiscard]] bool isUntouched(const FileStamp& other) const {
    return hasSameContent(other) && changed == other.changed;
  }

  static FileStamp of(const struct stat& status) {
    const auto nanoseconds = [](const timespec& time) {
      return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    };
    return {status.st_dev,
            status.st_ino,
            status.st_size,
            nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim),
            status.st_nlink};
  }

  /// For the file at the path, links followed; none when there is none.
  static std::optional<FileStamp> of(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0) return std::nullopt;
    return of(status);
  }
};

}  // namespace keyvora::x11
