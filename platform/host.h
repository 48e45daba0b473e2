#pragma once

#include <memory>

#include "platform/platform.h"

namespace keyvora::platform {

/// An operating system behind the door. Owns the objects that the platform's references name.
class Host {
 public:
  virtual ~Host() = default;

  [[nodiscard]] virtual const Platform& platform() const = 0;

  /// Makes this process the only instance of the program in the login session, as long as it lives; false
  /// when another instance is running. True on systems that ensure this themselves. Main thread, once.
  virtual bool becomeOnlyInstance() { return true; }
};

/// Makes the host that this program was built for; never null. Something missing, such as a display, is
/// reported when it is used. Called once, on the main thread, by the process entry. Defined by the host
/// that is linked into the program.
std::unique_ptr<Host> createHost();

}  // namespace keyvora::platform
