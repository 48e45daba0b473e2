#pragma once

namespace keyvora::x11 {

/// Makes the process ready for Xlib and for GTK, and looks for the X display. True when there is one. Signals
/// of broken pipes are ignored from here on. Main thread, once, before any other thread runs.
bool openDisplay();

/// Whether `openDisplay` found a display.
bool hasDisplay();

/// Opens GTK on the X display, whatever else it could run on, and leaves the command line alone; does nothing
/// when it is open. It costs more memory than all the rest: whoever shows something calls this first, and
/// until then it stays closed. False when it cannot be opened. Main thread.
bool openToolkit();

/// Whether GTK is open.
bool isToolkitOpen();

/// Whether the session is one of Wayland, with X applications running on the side.
bool isWaylandSession();

}  // namespace keyvora::x11
