#pragma once

#include <X11/Xlib.h>

#include "platform/applications.h"

namespace keyvora::x11 {

/// Which of a process's windows a key goes to, as the windows are now. Some round trips each.

/// The window itself or the topmost of its dialogs, the active one before all. None when it is gone or does
/// not belong to the process, and when the process would give the key to another document.
Window frontOf(Display* display, Window window, platform::ProcessIdentifier process);

/// The process's active window, else its topmost; those that stand in for an application come first. None
/// when it has no window.
Window anyWindowOf(Display* display, platform::ProcessIdentifier process);

}  // namespace keyvora::x11
