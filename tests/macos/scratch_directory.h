#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace keyvora::macos {

/// A new folder; the destructor removes it with its content.
class ScratchDirectory {
 public:
  ScratchDirectory()
      : path_(std::filesystem::temp_directory_path() /
              ("keyvora-" + std::string(NSUUID.UUID.UUIDString.UTF8String))) {
    std::filesystem::create_directories(path_);
  }
  ~ScratchDirectory() { std::filesystem::remove_all(path_); }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  /// Writes the file in place and returns its path.
  std::filesystem::path write(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace keyvora::macos
