#pragma once

#include <X11/Xlib.h>

#include <string_view>
#include <vector>

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
/// Read again when they change, never asked for. While no window manager runs, what the last one said about
/// the windows stands. Used by the thread that has the connection.
class WindowList {
 public:
  /// Reads what is there and asks to be told of changes.
  explicit WindowList(Display* display);

  /// Looks at an event of the connection; true when it changed the windows or the active one.
  bool notice(const XEvent& event);

  /// The oldest first.
  [[nodiscard]] const std::vector<ManagedWindow>& windows() const { return managed_; }

  /// The active window; its `window` is None when there is none.
  [[nodiscard]] const ManagedWindow& active() const { return active_; }

  /// The windows from the lowest to the topmost. One round trip.
  [[nodiscard]] std::vector<Window> stacking() const;

 private:
  /// What a window says of itself.
  struct Description {
    Window window = None;
    Window transientFor = None;
    platform::ProcessIdentifier process = 0;
    std::string_view bundleIdentifier;
  };

  void readClients();
  void readActive();
  Description describe(Window window) const;
  const Description* described(Window window) const;
  std::string_view identify(const Description& description) const;
  void update();

  Display* display_;
  Window root_;
  Atom clientListAtom_;
  Atom stackingAtom_;
  Atom activeAtom_;
  Atom processAtom_;
  Window activeWindow_ = None;
  std::vector<Description> descriptions_;
  std::vector<ManagedWindow> managed_;
  ManagedWindow active_;
};

}  // namespace keyvora::x11
