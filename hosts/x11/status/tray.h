#pragma once

#include <gdk/gdkx.h>

#include <functional>

namespace keyvora::x11 {

/// The system tray of the default X screen, as it comes and goes: the owner of the manager selection
/// `_NET_SYSTEM_TRAY_S<n>` (freedesktop.org's System Tray Protocol). Main thread; needs a display.
class Tray {
 public:
  /// `onChange` runs when a tray has appeared or the present one has gone.
  explicit Tray(std::function<void()> onChange);
  ~Tray();
  Tray(const Tray&) = delete;
  Tray& operator=(const Tray&) = delete;

  /// Whether there is one.
  [[nodiscard]] bool isPresent() const { return owner_ != None; }

  /// The visual with transparency that the tray asks its icons to use; null when it has none.
  [[nodiscard]] GdkVisual* transparentVisual() const;

  /// Asks the tray to take this window in.
  void dock(Window window) const;

 private:
  static GdkFilterReturn filter(GdkXEvent* event, GdkEvent* translated, gpointer tray);
  void see(const XEvent& event);
  void findOwner();

  std::function<void()> onChange_;
  GdkScreen* screen_;
  GdkDisplay* display_;
  Display* x_;
  Atom selection_;
  Atom manager_;
  Window owner_ = None;
};

}  // namespace keyvora::x11
