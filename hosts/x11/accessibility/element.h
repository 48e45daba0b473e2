#pragma once

#include "platform/accessibility.h"

namespace keyvora::x11 {

class CurrentTap;

/// The application element of a process. It knows "AXMenuBar": the first menu bar in depth-first order. The
/// elements below it know "AXChildren", "AXTitle" (none for an untitled one) and "AXPress".
///
/// Calls are bounded: after one that ran out of time, the application counts as unreachable for everything
/// that was reached through this element. A press lets the keyboard go first; `tap` outlives the elements.
platform::ElementRef applicationElement(platform::ProcessIdentifier process, CurrentTap& tap);

}  // namespace keyvora::x11
