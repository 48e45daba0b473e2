#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/keyboard/owner_end.h"

namespace keyvora::x11 {

/// The command that starts the tap's program.
struct TapCommand {
  std::filesystem::path program;
  /// As for XOpenDisplay; empty for what DISPLAY names.
  std::string display;
};

/// The running tap program. The destructor ends it, and it releases all keys. Main thread.
class TapProcess {
 public:
  /// Starts it, and waits until it is ready, with the tap disabled. Null when it cannot start or cannot
  /// work; `problem` then gives the reason in a sentence if this machine is the cause.
  static std::unique_ptr<TapProcess> start(const TapCommand& command, std::string& problem);

  ~TapProcess();
  TapProcess(const TapProcess&) = delete;
  TapProcess& operator=(const TapProcess&) = delete;

  /// The socket to the program. Other threads may keep it longer.
  [[nodiscard]] const std::shared_ptr<OwnerEnd>& end() const { return end_; }

  /// Ends it, with SIGKILL if necessary. Returns how it ended, for a sentence ("was ended by signal 9").
  std::string stop();

  [[nodiscard]] pid_t identifier() const { return process_; }

 private:
  TapProcess(pid_t process, posix::FileDescriptor socket);

  pid_t process_;
  std::shared_ptr<OwnerEnd> end_;
};

}  // namespace keyvora::x11
