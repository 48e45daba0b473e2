#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/loop/loop_wait.h"

namespace keyvora::x11 {

/// What the kernel reports about watched files (inotify), read while the loop waits. All watches share one
/// descriptor, which stays: to open and close one for each watch costs more than the watch itself. Main
/// thread.
class FileEvents final : private LoopWait::Worker {
 public:
  using Microseconds = LoopWait::Microseconds;

  class Listener {
   public:
    virtual ~Listener() = default;

    /// `events` are the bits of inotify(7) since the last call. Runs no other code of the program; it may not
    /// call `FileEvents`. False when the listener wants no more.
    virtual bool happened(std::uint32_t events) = 0;

    /// When `deliver` is to be called; none while there is nothing to deliver.
    [[nodiscard]] virtual std::optional<Microseconds> due() const = 0;

    /// May call `FileEvents`, and destroy the listener.
    virtual void deliver() = 0;
  };

  /// Null when the system gives no inotify instance.
  static std::shared_ptr<FileEvents> open(LoopWait& wait);

  FileEvents(LoopWait& wait, posix::FileDescriptor inotify);
  ~FileEvents() override;
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

  [[nodiscard]] int descriptor() const override { return inotify_.number(); }
  [[nodiscard]] std::optional<Microseconds> due() const override;
  bool work() override;

  void read();
  bool readBatch();
  bool report();
  bool end(Entry& entry);
  Listener* firstDue(Microseconds now) const;
  [[nodiscard]] bool isShared(const Entry& entry) const;

  LoopWait& wait_;
  posix::FileDescriptor inotify_;
  std::vector<Entry> entries_;
};

}  // namespace keyvora::x11
