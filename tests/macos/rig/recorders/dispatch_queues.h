#pragma once

#import <dispatch/dispatch.h>

namespace keyvora::rig {

/// Makes the main queue, which runs its blocks in the common modes. Once, on the main thread.
void beginMainQueue();

/// Runs what waits in the main queue now. On the main thread.
void runMainQueue();

/// Waits until the serial queues have nothing to do, and what their blocks held is given back; for a minute
/// at most.
void waitForSerialQueues();

}  // namespace keyvora::rig
