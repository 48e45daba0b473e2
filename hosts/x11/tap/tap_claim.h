#pragma once

#include "hosts/x11/display.h"

/// Makes a connection the session's only tap, until the connection ends in any way.
namespace keyvora::x11 {

/// Claims it; false when another connection has it. One round trip.
bool claimTap(Connection& connection);

/// Releases it.
void disclaimTap(Connection& connection);

}  // namespace keyvora::x11
