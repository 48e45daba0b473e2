#pragma once

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// Whether another program has grabbed an Option key without modifiers, on the root window or on a window
/// of a target: the tap does not get that key. Tries a grab, which lasts less than a millisecond; a press in
/// that time is not lost.
bool anotherHoldsOption(Connection& connection);

}  // namespace keyvora::x11
