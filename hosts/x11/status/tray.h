#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <memory>
#include <optional>

#include "hosts/x11/display.h"
#include "hosts/x11/loop/glib_source.h"
#include "hosts/x11/loop/main_loop.h"

namespace keyvora::x11 {

/// Follows the system tray of the default X screen: the owner of the manager selection
/// `_NET_SYSTEM_TRAY_S<n>` (freedesktop.org's System Tray Protocol). Main thread.
class Tray {
 public:
  /// `onChange` runs when a tray has appeared or the present one has ended.
  Tray(MainLoop& loop, std::function<void()> onChange);
  Tray(const Tray&) = delete;
  Tray& operator=(const Tray&) = delete;

  /// Whether there is one.
  [[nodiscard]] bool isPresent() const { return owner_ != None; }

  /// The visual that the tray requests for its icons; none when it requests none.
  [[nodiscard]] std::optional<VisualID> visual();

  /// Asks the tray to embed this window.
  void dock(Window window);

 private:
  void readEvents();
  void readSoon();
  bool concerns(const XEvent& event) const;
  void findOwner();

  MainLoop& loop_;
  std::function<void()> onChange_;
  /// Null when the display refuses another connection; then there is no tray.
  std::unique_ptr<Connection> connection_;
  Atom selection_ = None;
  Window owner_ = None;
  std::optional<ReadableSource> events_;
  std::unique_ptr<platform::Timer> reading_;
};

}  // namespace keyvora::x11
