#pragma once

#include <X11/Xlib.h>

namespace keyvora::x11 {

/// Whether Sticky Keys are on, the access feature by which a modifier that was tapped counts for the next
/// key: a lone Option tap then means that, and arms nothing. One round trip.
bool stickyKeysAreOn(Display* display);

}  // namespace keyvora::x11
