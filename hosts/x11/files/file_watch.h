#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/files/file_stamp.h"
#include "hosts/x11/glib_source.h"
#include "platform/file_system.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// Watches one file, not a path, by inotify on GLib's default main context. The handler runs once for changes
/// that follow each other closely, as when a program saves line by line. Main thread.
class FileWatch final : public platform::FileWatch {
 public:
  /// `missed` is called where the watch is cancelled with notifications that were still on their way. Null
  /// when the file cannot be opened.
  static std::unique_ptr<FileWatch> arm(const std::filesystem::path& path, std::function<void()> handler,
                                        std::function<void()> missed);

  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;
  ~FileWatch() override;

  void cancel() override;

  /// Runs the handler in the next pass of the loop as well, unless the watch is cancelled before.
  void notifySoon(platform::MainLoop& loop);

  /// The watched file, as it was when the watch was armed.
  [[nodiscard]] const FileStamp& file() const { return file_; }

 private:
  FileWatch(std::filesystem::path path, const FileStamp& file, posix::FileDescriptor inotify,
            std::function<void()> handler, std::function<void()> missed);

  /// What a batch of events amounts to.
  struct News {
    bool written = false;
    bool gone = false;  ///< deleted or renamed
  };

  void collect();
  void deliver();
  void stopCollecting();
  void runHandler();
  News readEvents();
  bool wasUnlinked();

  std::filesystem::path path_;
  FileStamp file_;
  posix::FileDescriptor inotify_;
  std::function<void()> handler_;
  std::function<void()> missed_;
  std::unique_ptr<ReadableSource> source_;
  /// What was read and not yet handed on, since when in microseconds of GLib's clock, and the timer that
  /// hands it on.
  News collected_;
  std::int64_t collectingSince_ = 0;
  unsigned timer_ = 0;
  std::unique_ptr<platform::Timer> catchUp_;
};

}  // namespace keyvora::x11
