#pragma once

#include "hosts/x11/applications/applications.h"
#include "platform/accessibility.h"

namespace keyvora::x11 {

class CurrentTap;

/// The application element of a process. It knows "AXMenuBar": the first menu bar, in depth-first order, of
/// the document that `applications` says keys were swallowed in last, and of no other; while there is none
/// yet, of the application. The elements below it know "AXChildren", "AXTitle" (none for an untitled one),
/// "AXKeyShortcutsValue" and "AXPress".
///
/// Calls are bounded: after one that ran out of time, the application counts as unreachable for everything
/// that was reached through this element. A press lets the keyboard go first; `applications` and `tap`
/// outlive the elements.
platform::ElementRef applicationElement(platform::ProcessIdentifier process, Applications& applications,
                                        CurrentTap& tap);

}  // namespace keyvora::x11
