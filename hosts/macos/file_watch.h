#pragma once

#import <dispatch/dispatch.h>

#include "platform/file_system.h"

namespace keyvora::macos {

/// A vnode dispatch source on an event-only descriptor, delivering on the main queue.
class FileWatch final : public platform::FileWatch {
 public:
  /// Null when the file cannot be opened.
  static std::unique_ptr<FileWatch> open(const std::filesystem::path& path, std::function<void()> handler);
  ~FileWatch() override;
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  void cancel() override;

 private:
  explicit FileWatch(dispatch_source_t source) : source_(source) {}

  dispatch_source_t source_;
};

}  // namespace keyvora::macos
