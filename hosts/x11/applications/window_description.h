#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <optional>
#include <string_view>

#include "platform/applications.h"

namespace keyvora::x11 {

/// How many windows a dialog may be away from the window that it belongs to; ends a circle of dialogs.
inline constexpr int deepestDialog = 8;

/// What a window says of itself.
struct WindowDescription {
  Window window = None;
  /// The window that it was opened from, if it is a dialog.
  Window transientFor = None;
  platform::ProcessIdentifier process = 0;
  /// What its own class stands in for; empty for nothing.
  std::string_view bundleIdentifier;
  /// Whether keys that are sent to it go to the document of its process that was in front last.
  bool sharesKeys = false;
  /// Whether it has said all, and is not of a kind that becomes another.
  bool isFinal = false;
};

/// Asks the window; empty fields for None and for one that is gone. Some round trips.
WindowDescription describeWindow(Display* display, Window window);

/// Whether this property of a window is part of what it says of itself.
bool isDescribing(Display* display, Atom property);

/// What a window stands in for, empty for nothing. A dialog need not carry its application's class, and a
/// process may show windows of several applications: a dialog counts with the window that it was opened from.
/// `described` finds that one.
std::string_view identify(const WindowDescription& description,
                          const std::function<std::optional<WindowDescription>(Window)>& described);

}  // namespace keyvora::x11
