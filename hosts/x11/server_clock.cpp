#include "hosts/x11/server_clock.h"

#include <X11/Xatom.h>

namespace keyvora::x11 {

ServerClock::ServerClock(const Connection& connection)
    : display_(connection.get()),
      window_(XCreateSimpleWindow(display_, connection.root(), -1, -1, 1, 1, 0, 0, 0)) {
  XSelectInput(display_, window_, PropertyChangeMask);
}

Time ServerClock::now() {
  XChangeProperty(display_, window_, XA_WM_NAME, XA_STRING, 8, PropModeAppend, nullptr, 0);
  XEvent event;
  XWindowEvent(display_, window_, PropertyChangeMask, &event);
  return event.xproperty.time;
}

}  // namespace keyvora::x11
