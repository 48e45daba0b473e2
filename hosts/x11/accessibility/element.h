#pragma once

#include "hosts/x11/applications/applications.h"
#include "platform/accessibility.h"

namespace keyvora::x11 {

class CurrentTap;

/// The application element of a process. It has "AXMenuBar": the first menu bar, in depth-first order, of
/// the document that the last swallowed keys were meant for, as `applications` says, and of no other;
/// before any key was swallowed, of the application. The elements below have "AXChildren", "AXTitle" (none
/// if untitled), "AXKeyShortcutsValue" and "AXPress".
///
/// Calls have a time limit. After one has exceeded it, all elements reached through this one count as
/// unreachable. Reading "AXMenuBar" first thaws the keyboard, and waits until the window that the swallowed
/// keys were meant for has handled its earlier input; without that there is no menu bar. A press thaws the
/// keyboard, too. `applications` and `tap` must outlive the elements.
platform::ElementRef applicationElement(platform::ProcessIdentifier process, Applications& applications,
                                        CurrentTap& tap);

}  // namespace keyvora::x11
