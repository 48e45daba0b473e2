#pragma once

#include <X11/Xlib.h>

#include <chrono>

#include "hosts/x11/keyboard/current_tap.h"

namespace keyvora::x11 {

/// Waits until the program of a window has handled the input that the server sent it before. A call by
/// another way, such as the accessibility bus, would otherwise overtake keys that the user typed ahead of a
/// busy program. Asks as window managers ask whether a program answers (_NET_WM_PING): the program reads the
/// question after those keys.
///
/// False when there is no answer within `limit`. True at once for a window that was closed, or whose program
/// does not take part. The main thread.
bool awaitEarlierInput(Window window, std::chrono::milliseconds limit, KeyboardIsFree);

}  // namespace keyvora::x11
