#pragma once

namespace keyvora::x11 {

/// Starts GTK on the X display, whatever else it could run on, and leaves the command line alone. True when
/// there is a display. Signals of broken pipes are ignored from here on. Main thread, once.
bool startToolkit();

/// Whether GTK has a display.
bool hasDisplay();

/// Whether the session is one of Wayland, with X applications running on the side.
bool isWaylandSession();

}  // namespace keyvora::x11
