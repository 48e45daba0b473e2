#pragma once

#include <functional>

namespace keyvora::rig {

/// Prepares `onMain`. Call it on the main thread.
void beginMainThread();

/// Runs the work on the main thread, in the common modes and in an autorelease pool, even while earlier
/// work runs a nested loop. Returns when the work has ended or, if `waitForEnd` is false, when it has
/// begun. Not to be called on the main thread.
void onMain(std::function<void()> work, bool waitForEnd = true);

}  // namespace keyvora::rig
