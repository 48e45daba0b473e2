#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <string>

namespace keyvora::x11 {

/// The name of the running window manager; none without one. A few round trips.
std::optional<std::string> windowManager(Display* display);

/// Whether the running window manager publishes the list of windows and the active one. A few round trips.
bool tellsFrontWindow(Display* display);

}  // namespace keyvora::x11
