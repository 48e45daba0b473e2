#pragma once

#include <optional>
#include <string>

namespace keyvora::platform {

/// State of the registration as a login item, with the values of `SMAppServiceStatus`.
enum class LoginStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// The registration with the system that starts the program at login. Main thread.
class LoginService {
 public:
  virtual ~LoginService() = default;

  virtual LoginStatus status() = 0;

  /// Registers the program. Returns the reason of a failure for the user, or none on success.
  virtual std::optional<std::string> registerProgram() = 0;

  /// Removes the registration. Returns the reason of a failure, or none on success.
  virtual std::optional<std::string> unregisterProgram() = 0;
};

}  // namespace keyvora::platform
