#include "hosts/x11/tap/tap_claim.h"

#include <X11/extensions/XInput2.h>

namespace keyvora::x11 {
namespace {

/// A button that no pointer device has.
constexpr int noPointersButton = 255;

}  // namespace

// Only one client can have a passive grab of this button, and it can be taken even while the target has no
// window.
bool claimTap(Connection& connection) {
  XIEventMask nothing{.deviceid = XIAllMasterDevices, .mask_len = 0, .mask = nullptr};
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  return XIGrabButton(connection.get(), XIAllMasterDevices, noPointersButton, connection.root(), None,
                      XIGrabModeAsync, XIGrabModeAsync, False, &nothing, 1, &modifiers) == 0;
}

void disclaimTap(Connection& connection) {
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  XIUngrabButton(connection.get(), XIAllMasterDevices, noPointersButton, connection.root(), 1, &modifiers);
}

}  // namespace keyvora::x11
