#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <vector>

namespace keyvora::x11 {

/// What the window manager says of the desktop's windows, on the root window. One round trip each.

/// The windows that it manages, the oldest first; none while no window manager says so.
std::optional<std::vector<Window>> listedWindows(Display* display);

/// The windows that it manages, from the lowest to the topmost.
std::vector<Window> stackedWindows(Display* display);

/// The active window; None when there is none.
Window activeWindow(Display* display);

/// The properties that say so.
Atom listProperty(Display* display);
Atom activeProperty(Display* display);

}  // namespace keyvora::x11
