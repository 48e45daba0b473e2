#include "hosts/x11/keyboard/sticky_keys.h"

#include <X11/XKBlib.h>

namespace keyvora::x11 {

bool stickyKeysAreOn(Display* display) {
  XkbDescRec description{};
  description.device_spec = XkbUseCoreKbd;
  if (XkbGetControls(display, XkbControlsEnabledMask, &description) != Success) return false;
  if (description.ctrls == nullptr) return false;
  const bool on = (description.ctrls->enabled_ctrls & XkbStickyKeysMask) != 0;
  XkbFreeControls(&description, XkbAllControlsMask, True);
  return on;
}

}  // namespace keyvora::x11
