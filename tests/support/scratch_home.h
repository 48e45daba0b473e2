#pragma once

#include "hosts/posix/file_operations.h"
#include "tests/support/scratch_directory.h"

namespace keyvora::test {

/// The real file system, with the user's directories in a scratch home. Watches do nothing.
class ScratchHome final : public posix::FileOperations {
 public:
  [[nodiscard]] const std::filesystem::path& path() const { return directory_.path(); }

  std::optional<std::filesystem::path> applicationSupportDirectory() override {
    return path() / "Library/Application Support";
  }
  std::optional<std::filesystem::path> libraryDirectory() override { return path() / "Library"; }
  std::unique_ptr<platform::FileWatch> watch(const std::filesystem::path&, std::function<void()>) override {
    return nullptr;
  }

 private:
  ScratchDirectory directory_;
};

}  // namespace keyvora::test
