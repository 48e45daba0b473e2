#pragma once

#include <optional>
#include <string>

namespace keyvora::platform {

/// How a script ended. `message` says why it failed, where the platform says so.
struct ScriptOutcome {
  bool succeeded = false;
  std::optional<std::string> message;
};

/// The AppleScript runtime, or what stands in for it.
class Scripts {
 public:
  virtual ~Scripts() = default;

  /// Makes a new script from source text, runs it and waits for its end. Main thread. A script that cannot be
  /// made is a failure without a message.
  virtual ScriptOutcome run(const std::string& source) = 0;
};

}  // namespace keyvora::platform
