#pragma once

#include <X11/Xlib.h>

#include "platform/applications.h"

namespace keyvora::x11 {

/// Which window of a process receives a key now. Some round trips each.

/// The window itself or the topmost of its dialogs; the active one has precedence. None when it was closed
/// or belongs to another process, and when the process would give the key to another document.
Window frontOf(Display* display, Window window, platform::ProcessIdentifier process);

/// The process's active window, else its topmost. Windows of a known application come first. None when it
/// has no window.
Window anyWindowOf(Display* display, platform::ProcessIdentifier process);

}  // namespace keyvora::x11
