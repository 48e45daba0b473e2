#pragma once

#include <string>

#include "hosts/simulated/failures.h"
#include "hosts/simulated/thread.h"
#include "hosts/simulated/trace.h"
#include "platform/fatal.h"

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
