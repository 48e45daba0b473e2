#pragma once

#include "hosts/x11/accessibility/accessibility_calls.h"
#include "platform/applications.h"

namespace keyvora::x11 {

/// The first menu bar, in depth-first order, of the process's application on the accessibility bus; null when
/// it has none, or cannot be reached.
Accessible findMenuBar(AccessibilityCalls& calls, platform::ProcessIdentifier process);

}  // namespace keyvora::x11
