#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <optional>
#include <string_view>

#include "platform/applications.h"

namespace keyvora::x11 {

/// The longest chain of dialogs that is followed; this also ends a cycle.
inline constexpr int deepestDialog = 8;

/// A window's properties that identify it.
struct WindowDescription {
  Window window = None;
  /// The window that it was opened from, if it is a dialog.
  Window transientFor = None;
  platform::ProcessIdentifier process = 0;
  /// The application that its class replaces; empty for none.
  std::string_view bundleIdentifier;
  /// Whether the process passes keys sent to this window to its most recently active document.
  bool sharesKeys = false;
  /// Whether the properties are complete, and the window is not of a kind whose class changes.
  bool isFinal = false;
};

/// Reads a window's properties; empty fields for None and for a closed window. Some round trips.
WindowDescription describeWindow(Display* display, Window window);

/// Whether this property belongs to a window's description.
bool isDescribing(Display* display, Atom property);

/// The bundle identifier that a window counts for, empty for none. A dialog may lack its application's
/// class, and a process may show windows of several applications, so a dialog counts for the window that it
/// was opened from, which `described` finds.
std::string_view identify(const WindowDescription& description,
                          const std::function<std::optional<WindowDescription>(Window)>& described);

}  // namespace keyvora::x11
