#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>

namespace keyvora::x11 {

/// Waits for the end of a child. Made before the child is started: from then on it notices signals that end
/// this program (SIGTERM, SIGINT, SIGHUP). Main thread.
class ChildEnd {
 public:
  ChildEnd();
  ~ChildEnd();
  ChildEnd(const ChildEnd&) = delete;
  ChildEnd& operator=(const ChildEnd&) = delete;

  /// Gives the child's status at its end, as `waitpid` does; none when it did not end within the limit. The
  /// child leads a process group of its own. A signal ends the wait, too, and is left to the main loop. What
  /// has not ended by itself is ended with its whole group, by force if it must be. Dispatches nothing else
  /// meanwhile.
  std::optional<int> await(pid_t child, std::chrono::milliseconds limit);

 private:
  struct Wait;
  std::unique_ptr<Wait> wait_;
};

}  // namespace keyvora::x11
