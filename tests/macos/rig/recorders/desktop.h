#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace keyvora::rig {

/// An application of the login session.
struct RunningApplication {
  /// None for a program without a bundle.
  std::optional<std::string> identifier;
  pid_t process = 0;
};

/// The running applications and the one in front. Used on the main thread, or before it runs.
class Desktop {
 public:
  static Desktop& shared();

  std::vector<RunningApplication> running;
  /// The process in front; none without one.
  std::optional<pid_t> front;
};

}  // namespace keyvora::rig
