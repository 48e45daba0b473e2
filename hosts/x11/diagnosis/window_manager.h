#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <string>

namespace keyvora::x11 {

/// The name of the window manager that runs now; none when none does. A few round trips.
std::optional<std::string> windowManager(Display* display);

/// Whether the window manager that runs now tells which windows there are and which is in front. A few round
/// trips.
bool tellsFrontWindow(Display* display);

}  // namespace keyvora::x11
