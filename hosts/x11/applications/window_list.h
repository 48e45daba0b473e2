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
  /// What its application stands in for; empty for an application that stands in for none.
  std::string_view bundleIdentifier;

  friend bool operator==(const ManagedWindow&, const ManagedWindow&) = default;
};

/// The windows of the desktop and the active one, as the window manager announces them on the root window.
/// Read again when they change, never asked for. While no window manager runs, the last
/// list is kept. Used by the thread that has the connection.
///
/// Once a window's class and process are known, its properties are read again only when it becomes the active
/// window. It is not watched in between, because toolkits set a property at every key typed into the window.
class WindowList {
 public:
  /// Reads what is there and asks to be told of changes.
  explicit WindowList(Display* display);

  /// Looks at an event of the connection; true when it changed the windows or the active one. Events that
  /// another program sent change nothing.
  bool notice(const XEvent& event);

  /// The oldest first.
  [[nodiscard]] const std::vector<ManagedWindow>& windows() const { return managed_; }

  /// The one among them with this number; its `window` is None when there is none.
  [[nodiscard]] ManagedWindow find(Window window) const;

  /// The window that this one is a dialog of, however many dialogs away, or the window itself; None when one
  /// of them is not managed any more.
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
