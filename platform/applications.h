#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::platform {

/// A process id, 32 bits wide as `pid_t` is.
using ProcessIdentifier = std::int32_t;

/// The applications that run in the login session. Main thread.
class Applications {
 public:
  virtual ~Applications() = default;

  /// Processes of the running applications with this bundle identifier, compared exactly, in the system's
  /// order; empty when there are none.
  virtual std::vector<ProcessIdentifier> running(std::string_view bundleIdentifier) = 0;

  /// Bundle identifier of the application in front; none when there is no such application, or it has no
  /// identifier. Called for every keyboard event: must not allocate or make a round trip. The view is valid
  /// until the next call.
  virtual std::optional<std::string_view> frontmostBundleIdentifier() = 0;
};

/// Opens files and addresses with the user's default programs. Main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Opens the file at an absolute path. The desktop shows failures.
  virtual void openFile(const std::string& path) = 0;

  /// Opens an address. A malformed address is ignored.
  virtual void openAddress(const std::string& address) = 0;
};

}  // namespace keyvora::platform
