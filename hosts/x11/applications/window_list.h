#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <string_view>
#include <vector>

#include "hosts/x11/applications/window_description.h"
#include "platform/applications.h"

namespace keyvora::x11 {

/// A window that the window manager manages.
struct ManagedWindow {
  Window window = None;
  platform::ProcessIdentifier process = 0;
  /// The application that it belongs to here; empty for an unknown one.
  std::string_view bundleIdentifier;

  friend bool operator==(const ManagedWindow&, const ManagedWindow&) = default;
};

/// The windows of the desktop and the active one, as the window manager publishes them on the root window.
/// Read when they change, so that a question needs no round trip. Without a window manager the last list is
/// kept. Used by the thread that has the connection.
///
/// Once a window's class and process are known, its properties are read again only when it becomes active.
/// It is not watched in between, because toolkits set a property of the window at every key typed into it.
class WindowList {
 public:
  /// Reads the present windows and selects events for changes.
  explicit WindowList(Display* display);

  /// Handles an event of the connection; true when it changed the windows or the active one. Events sent by
  /// other programs are ignored.
  bool notice(const XEvent& event);

  /// The oldest first.
  [[nodiscard]] const std::vector<ManagedWindow>& windows() const { return managed_; }

  /// The managed window with this number; its `window` is None when there is none.
  [[nodiscard]] ManagedWindow find(Window window) const;

  /// The window at the end of the chain of dialogs that starts with this one, possibly itself; None when
  /// one of them is not managed any more.
  [[nodiscard]] Window ownerOf(Window window) const;

  /// The active window; its `window` is None when there is none.
  [[nodiscard]] const ManagedWindow& active() const { return active_; }

 private:
  bool rootChanged(Atom property);
  void readClients();
  void readActive();
  WindowDescription describe(Window window) const;
  bool describeAgain(Window window);
  std::optional<WindowDescription> described(Window window) const;
  ManagedWindow managed(const WindowDescription& description) const;
  void update();

  Display* display_;
  Window root_;
  Window activeWindow_ = None;
  std::vector<WindowDescription> descriptions_;
  std::vector<ManagedWindow> managed_;
  ManagedWindow active_;
};

}  // namespace keyvora::x11
