#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "hosts/x11/files/file_events.h"
#include "hosts/x11/files/file_stamp.h"
#include "platform/file_system.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// Watches one file, not a path. The handler runs once for changes in quick succession, as when a program
/// saves line by line. Main thread.
class FileWatch final : public platform::FileWatch, private FileEvents::Listener {
 public:
  /// Called with the path of a watch that is cancelled with notifications pending.
  using Missed = std::function<void(const std::string& path)>;

  /// Null when the file cannot be watched.
  static std::unique_ptr<FileWatch> arm(std::shared_ptr<FileEvents> events, platform::MainLoop& loop,
                                        const std::string& path, std::function<void()> handler,
                                        Missed missed);

  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;
  ~FileWatch() override;

  void cancel() override;

  /// Reports a change as if it happened now.
  void changed();

  /// The watched file, in the state when the watch was set.
  [[nodiscard]] const FileStamp& file() const { return file_; }

 private:
  using Moment = std::chrono::steady_clock::time_point;

  FileWatch(std::shared_ptr<FileEvents> events, platform::MainLoop& loop, std::string path,
            const FileStamp& file, std::function<void()> handler, Missed missed);

  bool happened(std::uint32_t events) override;
  void deliverIn(std::chrono::steady_clock::duration delay);
  void deliverIfQuiet();
  bool wasUnlinked();

  std::shared_ptr<FileEvents> events_;
  platform::MainLoop& loop_;
  std::string path_;
  FileStamp file_;
  std::function<void()> handler_;
  Missed missed_;
  /// There are changes that were not reported yet; when the first and the last of them came.
  bool isCollecting_ = false;
  Moment first_;
  Moment last_;
  /// Held weakly by delayed blocks; null once cancelled.
  std::shared_ptr<FileWatch*> self_;
};

}  // namespace keyvora::x11
