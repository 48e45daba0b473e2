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

/// Watches one file, not a path, by inotify on GLib's default main context. The handler runs once for
/// changes in quick succession, as when a program saves line by line. Main thread.
class FileWatch final : public platform::FileWatch {
 public:
  /// `missed` is called when the watch is cancelled with notifications pending. Null when the file cannot
  /// be opened.
  static std::unique_ptr<FileWatch> arm(const std::filesystem::path& path, std::function<void()> handler,
                                        std::function<void()> missed);

  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;
  ~FileWatch() override;

  void cancel() override;

  /// Also runs the handler in the next pass of the loop, unless the watch is cancelled before.
  void notifySoon(platform::MainLoop& loop);

  /// The watched file, in the state when the watch was set.
  [[nodiscard]] const FileStamp& file() const { return file_; }

 private:
  FileWatch(std::filesystem::path path, const FileStamp& file, posix::FileDescriptor inotify,
            std::function<void()> handler, std::function<void()> missed);

  /// The combined meaning of a batch of events.
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
  /// Events that were read and not reported yet, the time of the first in microseconds of GLib's clock, and
  /// the timer that reports them.
  News collected_;
  std::int64_t collectingSince_ = 0;
  unsigned timer_ = 0;
  std::unique_ptr<platform::Timer> catchUp_;
};

}  // namespace keyvora::x11
