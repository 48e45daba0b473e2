#include "hosts/x11/applications/desktop_windows.h"

#include <X11/Xatom.h>

#include "hosts/x11/applications/window_property.h"

namespace keyvora::x11 {
namespace {

std::optional<std::vector<Window>> windowsIn(Display* display, Atom property) {
  return numbersOf(display, DefaultRootWindow(display), property, XA_WINDOW);
}

}  // namespace

std::optional<std::vector<Window>> listedWindows(Display* display) {
  return windowsIn(display, listProperty(display));
}

std::vector<Window> stackedWindows(Display* display) {
  return windowsIn(display, XInternAtom(display, "_NET_CLIENT_LIST_STACKING", False))
      .value_or(std::vector<Window>{});
}

Window activeWindow(Display* display) {
  const auto active = windowsIn(display, activeProperty(display));
  return active && !active->empty() ? active->front() : None;
}

// Xlib caches atoms.
Atom listProperty(Display* display) {
  return XInternAtom(display, "_NET_CLIENT_LIST", False);
}

Atom activeProperty(Display* display) {
  return XInternAtom(display, "_NET_ACTIVE_WINDOW", False);
}

}  // namespace keyvora::x11
