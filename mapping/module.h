#pragma once

#include "platform/bundles.h"

namespace keyvora {

/// The resource bundle that carries the default mapping document, found once, when it is first asked for.
/// Fatal when there is none: a program without it was not put together right. Any thread.
const platform::Bundle& module();

}  // namespace keyvora
