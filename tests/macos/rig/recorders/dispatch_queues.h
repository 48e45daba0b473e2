#pragma once

#import <dispatch/dispatch.h>

namespace keyvora::rig {

/// Creates the main queue, which runs its blocks in the common modes. Call it once, on the main thread.
void beginMainQueue();

/// Runs the waiting blocks of the main queue. Call it on the main thread.
void runMainQueue();

/// Waits until the serial queues are idle and the objects of their blocks are released, for at most a
/// minute.
void waitForSerialQueues();

}  // namespace keyvora::rig
