#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>

namespace keyvora::x11 {

/// Waits for the end of a child. Constructed before the child is started: from then on it notices signals
/// that end this program (SIGTERM, SIGINT, SIGHUP). Main thread.
class ChildEnd {
 public:
  ChildEnd();
  ~ChildEnd();
  ChildEnd(const ChildEnd&) = delete;
  ChildEnd& operator=(const ChildEnd&) = delete;

  /// The child's status at its end, as from `waitpid`; none when it did not end within the limit. The child
  /// must lead a process group. A signal ends the wait as well, and the main loop handles it later. A child
  /// that is still running gets SIGTERM with its whole group, then SIGKILL. Runs no other sources
  /// meanwhile.
  std::optional<int> await(pid_t child, std::chrono::milliseconds limit);

 private:
  struct Wait;
  std::unique_ptr<Wait> wait_;
};

}  // namespace keyvora::x11
