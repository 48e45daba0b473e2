#pragma once

#include "hosts/x11/accessibility/accessibility_calls.h"
#include "hosts/x11/applications/applications.h"

namespace keyvora::x11 {

/// The first menu bar, in depth-first order, of the process's application on the accessibility bus; null
/// when it has none or cannot be reached.
Accessible findMenuBar(AccessibilityCalls& calls, platform::ProcessIdentifier process);

/// The first menu bar in the frame of a document. Null when no frame has its title. When several frames
/// have it, the active one is meant if the document's window is active; otherwise null.
Accessible findMenuBarOf(AccessibilityCalls& calls, const DocumentFrame& document);

}  // namespace keyvora::x11
