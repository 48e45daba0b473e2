#pragma once

#include <X11/Xlib.h>

#include <optional>

namespace keyvora::x11 {

/// The devices that the tap uses, by their XInput numbers.
struct KeyDevices {
  /// The master keyboard that windows receive events from.
  int master = 0;
  /// The slave of that master through which XTEST injects keys.
  int xtest = 0;
};

/// Finds the devices; none on a server without a keyboard. A few round trips.
std::optional<KeyDevices> findKeyDevices(Display* display);

}  // namespace keyvora::x11
