#pragma once

namespace keyvora::x11 {

/// Initialises Xlib for threads, looks for the X display and ignores SIGPIPE. True when there is a display.
/// Main thread, once, before any other thread runs.
bool openDisplay();

/// Whether `openDisplay` found a display.
bool hasDisplay();

/// Initialises GTK on the X display and no other backend, without reading the command line; does nothing if
/// that was done. GTK takes more memory than the rest of the program, so it stays closed until something is
/// shown: call this before showing anything. False when it cannot be initialised. Main thread.
bool openToolkit();

/// Loads the user's settings and theme, unless that was done. Otherwise the first widget does it, and that
/// is the longest part of showing the first window. Does nothing while GTK is not initialised. Main
/// thread.
void loadTheme();

/// Whether GTK is initialised.
bool isToolkitOpen();

/// Whether the session is a Wayland session, with X applications running through XWayland.
bool isWaylandSession();

}  // namespace keyvora::x11
