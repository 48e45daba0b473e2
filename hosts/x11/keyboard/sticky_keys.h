#pragma once

#include <X11/Xlib.h>

namespace keyvora::x11 {

/// Whether Sticky Keys are on, the accessibility feature in which a tapped modifier applies to the next
/// key. A lone Option tap means that then, and must not arm. One round trip.
bool stickyKeysAreOn(Display* display);

}  // namespace keyvora::x11
