#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/keyboard/owner_end.h"

namespace keyvora::x11 {

/// How the tap's program is started.
struct TapCommand {
  std::filesystem::path program;
  /// As for XOpenDisplay; empty for what DISPLAY names.
  std::string display;
};

/// Where the tap's program of this installation is: beside the program itself, as built, or in
/// `libexec/keyvora` of its prefix.
std::filesystem::path tapProgramOf(const std::filesystem::path& program);

/// The tap's program while it runs. Ended by the destructor, with all keys let go. Main thread.
class TapProcess {
 public:
  /// Starts it, and waits until it can do its work, switched off; null when it cannot be started or cannot do
  /// its work, and then `problem`, if it is the machine's, says why in a sentence.
  static std::unique_ptr<TapProcess> start(const TapCommand& command, std::string& problem);

  ~TapProcess();
  TapProcess(const TapProcess&) = delete;
  TapProcess& operator=(const TapProcess&) = delete;

  /// What is said to it. Other threads may keep it for longer.
  [[nodiscard]] const std::shared_ptr<OwnerEnd>& end() const { return end_; }

  /// Ends it, by force if need be; how it ended, for a sentence ("was ended by signal 9").
  std::string stop();

  [[nodiscard]] pid_t identifier() const { return process_; }

 private:
  TapProcess(pid_t process, posix::FileDescriptor socket);

  pid_t process_;
  std::shared_ptr<OwnerEnd> end_;
};

}  // namespace keyvora::x11
