#pragma once

#include <memory>

#include "platform/platform.h"

namespace keyvora::platform {

/// An operating system behind the door; it owns what the platform's references name.
class Host {
 public:
  virtual ~Host() = default;

  [[nodiscard]] virtual const Platform& platform() const = 0;

  /// Makes this process the only one of its program in the login session, for as long as it lives; false when
  /// another one is that already. True where the system sees to it. Main thread, once.
  virtual bool becomeOnlyInstance() { return true; }
};

/// Makes the host that this program was built for; never null. What the machine lacks (a display, say) shows
/// when it is used. Called once, on the main thread, by the process entry. Defined by the host that is
/// linked.
std::unique_ptr<Host> createHost();

}  // namespace keyvora::platform
