#include "hosts/x11/diagnosis/window_manager.h"

#include <X11/Xatom.h>

#include <algorithm>

#include "hosts/x11/applications/desktop_windows.h"
#include "hosts/x11/applications/window_property.h"

namespace keyvora::x11 {
namespace {

/// The window manager's check window; None without a running one. A property left by an earlier window
/// manager names a window that does not exist.
Window checkWindow(Display* display) {
  const Atom property = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
  const auto named = numbersOf(display, DefaultRootWindow(display), property, XA_WINDOW);
  if (!named || named->empty()) return None;
  const auto confirmed = numbersOf(display, named->front(), property, XA_WINDOW);
  return confirmed == named ? named->front() : None;
}

}  // namespace

std::optional<std::string> windowManager(Display* display) {
  const Window window = checkWindow(display);
  if (window == None) return std::nullopt;
  return titleOf(display, window).value_or("without a name");
}

bool tellsFrontWindow(Display* display) {
  if (checkWindow(display) == None || !listedWindows(display)) return false;
  const auto supported =
      numbersOf(display, DefaultRootWindow(display), XInternAtom(display, "_NET_SUPPORTED", False), XA_ATOM);
  return supported && std::ranges::find(*supported, activeProperty(display)) != supported->end();
}

}  // namespace keyvora::x11
