#pragma once

#include "platform/file_system.h"

namespace keyvora::macos {

/// Files by NSFileManager, NSData and NSFileHandle; watches by vnode dispatch sources.
class FileSystem final : public platform::FileSystem {
 public:
  std::optional<std::filesystem::path> applicationSupportDirectory() override;
  std::optional<std::filesystem::path> libraryDirectory() override;
  bool createDirectories(const std::filesystem::path& directory) override;
  bool exists(const std::filesystem::path& path) override;
  bool copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
  platform::FileContents read(const std::filesystem::path& path) override;
  bool append(const std::filesystem::path& path, std::string_view bytes) override;
  bool replace(const std::filesystem::path& path, std::string_view bytes) override;
  std::unique_ptr<platform::FileWatch> watch(const std::filesystem::path& path,
                                             std::function<void()> handler) override;
};

}  // namespace keyvora::macos
