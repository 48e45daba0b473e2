#pragma once

#include <X11/Xlib.h>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// The X server's time, as in events. Uses the connection, which must outlive it, from one thread at a time.
class ServerClock {
 public:
  explicit ServerClock(const Connection& connection);

  /// One round trip. Events that came before stay in Xlib's queue.
  Time now();

  /// A window of this client, which is never shown.
  [[nodiscard]] Window window() const { return window_; }

 private:
  Display* display_;
  Window window_;
};

}  // namespace keyvora::x11
