#pragma once

#include "hosts/x11/display.h"

/// The right to be the session's only tap. It ends with the connection that has it, however that ends.
namespace keyvora::x11 {

/// Takes it; false when another connection has it. One round trip.
bool claimTap(Connection& connection);

/// Gives it back.
void disclaimTap(Connection& connection);

}  // namespace keyvora::x11
