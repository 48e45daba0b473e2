#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/files/file_events.h"
#include "hosts/x11/files/file_stamp.h"
#include "platform/file_system.h"

namespace keyvora::x11 {

/// Watches one file, not a path. The handler runs once for changes in quick succession, as when a program
/// saves line by line. Main thread.
class FileWatch final : public platform::FileWatch, private FileEvents::Listener {
 public:
  /// Called with the path of a watch that is cancelled with notifications pending.
  using Missed = std::function<void(const std::string& path)>;

  /// Null when the file cannot be watched.
  static std::unique_ptr<FileWatch> arm(std::shared_ptr<FileEvents> events, const std::string& path,
                                        std::function<void()> handler, Missed missed);

  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;
  ~FileWatch() override;

  void cancel() override;

  /// Reports a change as if it happened now.
  void changed();

  /// The watched file, in the state when the watch was set.
  [[nodiscard]] const FileStamp& file() const { return file_; }

 private:
  using Microseconds = FileEvents::Microseconds;

  FileWatch(std::shared_ptr<FileEvents> events, std::string path, const FileStamp& file,
            std::function<void()> handler, Missed missed);

  bool happened(std::uint32_t events) override;
  [[nodiscard]] std::optional<Microseconds> due() const override;
  void deliver() override;
  bool wasUnlinked();

  /// When the first and the last of the changes came that were not reported yet.
  struct Changes {
    Microseconds first;
    Microseconds last;
  };

  /// Null once cancelled.
  std::shared_ptr<FileEvents> events_;
  std::string path_;
  FileStamp file_;
  std::function<void()> handler_;
  Missed missed_;
  std::optional<Changes> changes_;
};

}  // namespace keyvora::x11
