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

  /// Bundle identifier of the application in front; none when no application is, or it has none. It is asked
  /// for at every keyboard event: no allocation, no round trip. The view is good until the next call.
  virtual std::optional<std::string_view> frontmostBundleIdentifier() = 0;
};

/// Opens files and addresses in whatever the user's desktop has for them. Main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Opens the file at an absolute path. Failures are the desktop's to show.
  virtual void openFile(const std::string& path) = 0;

  /// Opens an address; one that does not form is passed over.
  virtual void openAddress(const std::string& address) = 0;
};

}  // namespace keyvora::platform
