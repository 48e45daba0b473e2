#pragma once

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// Whether another program has grabbed an Option key, pressed alone, on the root window or on a window of a
/// target: then the tap does not see it. Tries it out, so that for less than a millisecond the key is held
/// here.
bool anotherHoldsOption(Connection& connection);

}  // namespace keyvora::x11
