#pragma once

namespace keyvora::x11 {

/// Whether the session has an accessibility bus; where one can be started, it is. One that does not answer
/// within two seconds is there: on a busy machine it takes longer to start than anybody should wait. Main
/// thread.
bool hasAccessibilityBus();

}  // namespace keyvora::x11
