#pragma once

#include <functional>

namespace keyvora::rig {

/// Makes `onMain` ready. On the main thread.
void beginMainThread();

/// Runs the work on the main thread, in the common modes, within a pool, also while earlier work runs a loop
/// of its own. Returns when the work has ended, or with `waitForEnd` false when it has begun. Not from the
/// main thread.
void onMain(std::function<void()> work, bool waitForEnd = true);

}  // namespace keyvora::rig
