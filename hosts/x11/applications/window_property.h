#pragma once

#include <X11/Xlib.h>

#include <optional>
#include <string>
#include <vector>

namespace keyvora::x11 {

/// The numbers that a window's property of this type holds; none when it has no such property. One round
/// trip.
std::optional<std::vector<unsigned long>> numbersOf(Display* display, Window window, Atom property,
                                                    Atom type);

/// The UTF-8 text that a window's property holds; none when it has no such property. One round trip.
std::optional<std::string> textOf(Display* display, Window window, Atom property);

/// A window's title in UTF-8; none when it has none, or is gone. Two round trips at the most.
std::optional<std::string> titleOf(Display* display, Window window);

}  // namespace keyvora::x11
