#pragma once

#include <string>

#include "hosts/simulated/failures.h"
#include "hosts/simulated/thread.h"
#include "hosts/simulated/trace.h"
#include "platform/fatal.h"

namespace keyvora::simulated {

/// State shared by all parts of the simulated host.
struct World {
  MainThread mainThread;
  Trace trace;
  Failures failures;

  /// Called at the start of each call of the door: checks its thread, counts it, and returns whether it
  /// fails this time.
  bool fails(Call call) {
    if (traits(call).mainThreadOnly && !mainThread.isCurrent()) {
      platform::fatal(std::string(traits(call).name) + " was called off the main thread");
    }
    return failures.fails(call);
  }
};

}  // namespace keyvora::simulated
