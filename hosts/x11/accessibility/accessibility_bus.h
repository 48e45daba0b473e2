#pragma once

namespace keyvora::x11 {

/// Whether the session has an accessibility bus. Starts one if that is possible. A bus that does not answer
/// within two seconds counts as present: on a busy machine starting it may take longer than a caller should
/// wait. Main thread.
bool hasAccessibilityBus();

}  // namespace keyvora::x11
