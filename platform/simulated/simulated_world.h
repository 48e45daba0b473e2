#pragma once

#include <string>

#include "platform/fatal.h"
#include "platform/simulated/simulated_failures.h"
#include "platform/simulated/simulated_thread.h"
#include "platform/simulated/simulated_trace.h"

namespace keyvora::simulated {

/// What all parts of the simulated host share.
struct World {
  MainThread mainThread;
  Trace trace;
  Failures failures;

  /// Entering a call of the door: checks its thread contract, counts it, and says whether it fails this time.
  bool fails(Call call) {
    if (traits(call).mainThreadOnly && !mainThread.isCurrent()) {
      platform::fatal(std::string(traits(call).name) + " was called off the main thread");
    }
    return failures.fails(call);
  }
};

}  // namespace keyvora::simulated
