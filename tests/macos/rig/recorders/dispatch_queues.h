#pragma once

#import <dispatch/dispatch.h>

#include <functional>

namespace keyvora::rig {

/// Makes the main queue, which runs its blocks in the common modes. Once, on the main thread.
void beginMainQueue();

/// Runs what waits in the main queue now. On the main thread.
void runMainQueue();

/// Waits until the serial queues have nothing to do, and what their blocks held is given back; for a minute
/// at most.
void waitForSerialQueues();

/// Runs the function on the main thread, in the common modes; returns when it has begun (`wait` false) or
/// ended. Not from the main thread.
void onMain(std::function<void()> work, bool waitForEnd = true);

}  // namespace keyvora::rig
