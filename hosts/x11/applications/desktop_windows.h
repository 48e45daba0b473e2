#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <vector>

namespace keyvora::x11 {

/// The window manager's properties on the root window. One round trip each.

/// The windows that it manages, the oldest first; none without a window manager that lists them.
std::optional<std::vector<Window>> listedWindows(Display* display);

/// The windows that it manages, from the bottom of the stack to the top.
std::vector<Window> stackedWindows(Display* display);

/// The active window; None when there is none.
Window activeWindow(Display* display);

/// The properties that the functions above read.
Atom listProperty(Display* display);
Atom activeProperty(Display* display);

}  // namespace keyvora::x11
