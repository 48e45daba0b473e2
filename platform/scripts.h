#pragma once

#include <optional>
#include <string>

namespace keyvora::platform {

/// The result of a script. `message` says why it failed, if the platform gives a reason.
struct ScriptOutcome {
  bool succeeded = false;
  std::optional<std::string> message;
};

/// The AppleScript runtime, or its replacement on other systems.
class Scripts {
 public:
  virtual ~Scripts() = default;

  /// Creates a script from source text, runs it and waits for its end. Main thread. A script that cannot be
  /// created is a failure without a message.
  virtual ScriptOutcome run(const std::string& source) = 0;
};

}  // namespace keyvora::platform
