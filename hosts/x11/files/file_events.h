#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/glib_source.h"

namespace keyvora::x11 {

/// What the kernel reports about watched files (inotify), on GLib's default main context. All watches share
/// one descriptor and one source, which stay: to open and close them for each watch costs more than the watch
/// itself, and GLib takes another turn of its loop whenever a descriptor comes or goes. Main thread.
class FileEvents {
 public:
  class Listener {
   public:
    virtual ~Listener() = default;

    /// `events` are the bits of inotify(7) since the last call. Runs no other code of the program; it may not
    /// call `FileEvents`. False when the listener wants no more.
    virtual bool happened(std::uint32_t events) = 0;
  };

  /// Null when the system gives no inotify instance.
  static std::shared_ptr<FileEvents> open();

  explicit FileEvents(posix::FileDescriptor inotify);
  FileEvents(const FileEvents&) = delete;
  FileEvents& operator=(const FileEvents&) = delete;

  /// From now on `listener` hears of the file that the path names now, links followed; false when it cannot
  /// be watched. The listener must be removed before it ends.
  bool add(const char* path, Listener& listener);

  /// The listener hears what has happened until now, and nothing after that. Does nothing for a listener
  /// that is not there any more.
  void remove(Listener& listener);

 private:
  /// Listeners to the same file have the same number.
  struct Entry {
    int number;
    Listener* listener;
    std::uint32_t events;
  };

  void read();
  bool readBatch();
  bool report();
  bool drop(const Listener& listener);
  std::vector<Entry>::iterator find(const Listener& listener);
  [[nodiscard]] bool isShared(const Entry& entry) const;

  posix::FileDescriptor inotify_;
  std::vector<Entry> entries_;
  ReadableSource source_;
};

}  // namespace keyvora::x11
