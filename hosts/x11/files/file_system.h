#pragma once

#include <memory>

#include "hosts/posix/file_operations.h"
#include "hosts/x11/files/file_events.h"
#include "hosts/x11/files/file_stamp.h"
#include "hosts/x11/loop/loop_wait.h"

namespace keyvora::x11 {

/// Files, in the same places as on macOS, under the user's home.
class FileSystem final : public posix::FileOperations {
 public:
  explicit FileSystem(LoopWait& wait);

  std::optional<std::filesystem::path> applicationSupportDirectory() override;
  std::optional<std::filesystem::path> libraryDirectory() override;
  platform::FileContents read(const std::filesystem::path& path) override;

  /// A change after the last `read` of the file and before the watch starts is reported as if it came just
  /// afterwards, so that no change is lost between the two.
  std::unique_ptr<platform::FileWatch> watch(const std::filesystem::path& path,
                                             std::function<void()> handler) override;

 private:
  /// The last read file, shared with the watches.
  struct LastRead {
    std::string path;
    std::optional<FileStamp> file;
    bool overtaken = false;
  };
  LoopWait& wait_;
  /// From the first watch on.
  std::shared_ptr<FileEvents> events_;
  std::shared_ptr<LastRead> lastRead_;
};

}  // namespace keyvora::x11
