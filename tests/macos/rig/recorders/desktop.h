#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace keyvora::rig {

/// An application of the login session.
struct RunningApplication {
  /// None for a bare program.
  std::optional<std::string> identifier;
  pid_t process = 0;
};

/// Which applications run, and which is in front. Main thread, or before it runs.
class Desktop {
 public:
  static Desktop& shared();

  std::vector<RunningApplication> running;
  /// The process in front; none while no application is.
  std::optional<pid_t> front;
};

}  // namespace keyvora::rig
