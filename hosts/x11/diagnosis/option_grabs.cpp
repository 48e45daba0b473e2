#include "hosts/x11/diagnosis/option_grabs.h"

#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <vector>

#include "hosts/x11/applications/window_list.h"
#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/tap/key_devices.h"
#include "hosts/x11/tap/tap_claim.h"

namespace keyvora::x11 {
namespace {

/// The states with no modifier held except locks: Caps Lock and, by custom, Num Lock.
constexpr std::array<unsigned, 4> alone{0, LockMask, Mod2Mask, LockMask | Mod2Mask};

// A press between a grab and its end is this program's. The grabs are synchronous, so that the server holds
// such a press and all keys after it until it is told to replay them: the press then goes where it would have
// gone. Without such a press there is nothing to replay.

/// Core grabs and XInput grabs do not conflict with each other, so each kind is tried.
bool refusesCoreGrab(Display* display, Window window, KeyCode key) {
  ErrorTrap trap(display);
  for (const unsigned modifiers : alone) {
    XGrabKey(display, key, modifiers, window, False, GrabModeAsync, GrabModeSync);
    XUngrabKey(display, key, modifiers, window);
  }
  XAllowEvents(display, ReplayKeyboard, CurrentTime);
  return trap.code() == BadAccess;
}

bool refusesDeviceGrab(Display* display, int master, Window window, KeyCode key) {
  ErrorTrap trap(display);
  std::array<XIGrabModifiers, alone.size()> modifiers{};
  std::ranges::transform(alone, modifiers.begin(),
                         [](unsigned each) { return XIGrabModifiers{.modifiers = int(each), .status = 0}; });
  const auto wanted = modifiers;
  XIEventMask nothing{.deviceid = master, .mask_len = 0, .mask = nullptr};
  const int refused = XIGrabKeycode(display, master, key, window, XIGrabModeSync, XIGrabModeAsync, False,
                                    &nothing, int(modifiers.size()), modifiers.data());
  auto taken = wanted;
  XIUngrabKeycode(display, master, key, window, int(taken.size()), taken.data());
  XIAllowEvents(display, master, XIReplayDevice, CurrentTime);
  return refused > 0 && trap.code() == 0;
}

std::vector<Window> targetWindows(Display* display) {
  std::vector<Window> targets;
  const WindowList list(display);
  for (const auto& window : list.windows()) {
    if (!window.bundleIdentifier.empty()) targets.push_back(window.window);
  }
  return targets;
}

}  // namespace

bool anotherHoldsOption(Connection& connection) {
  Display* display = connection.get();
  const auto devices = findKeyDevices(display);
  if (!devices || !xinputOpcode(display)) return false;
  // A running tap of keyvora already has its grabs on the target.
  const bool noTap = claimTap(connection);
  if (noTap) disclaimTap(connection);
  const auto targets = targetWindows(display);
  const KeyMap keys(display);
  return std::ranges::any_of(keys.optionKeycodes(), [&](KeyCode key) {
    if (refusesCoreGrab(display, connection.root(), key)) return true;
    if (refusesDeviceGrab(display, devices->master, connection.root(), key)) return true;
    return std::ranges::any_of(targets, [&](Window window) {
      return refusesCoreGrab(display, window, key) ||
             (noTap && refusesDeviceGrab(display, devices->master, window, key));
    });
  });
}

}  // namespace keyvora::x11
