#pragma once

#include <optional>
#include <string>

namespace keyvora::platform {

/// State of the registration as a login item, with the values of `SMAppServiceStatus`.
enum class LoginStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// The program's registration with the system to be started at login. Main thread.
class LoginService {
 public:
  virtual ~LoginService() = default;

  virtual LoginStatus status() = 0;

  /// Registers the program; returns why it could not, for a person, or none on success.
  virtual std::optional<std::string> registerProgram() = 0;

  /// Takes the registration back; returns why it could not, or none on success.
  virtual std::optional<std::string> unregisterProgram() = 0;
};

}  // namespace keyvora::platform
