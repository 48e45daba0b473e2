#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <string>
#include <vector>

namespace keyvora::x11 {

/// The numbers in a window's property of this type; none when it has no such property. One round trip.
std::optional<std::vector<unsigned long>> numbersOf(Display* display, Window window, Atom property,
                                                    Atom type);

/// The UTF-8 text in a window's property; none when it has no such property. One round trip.
std::optional<std::string> textOf(Display* display, Window window, Atom property);

/// A window's title in UTF-8; none when it has none or was closed. At most two round trips.
std::optional<std::string> titleOf(Display* display, Window window);

}  // namespace keyvora::x11
