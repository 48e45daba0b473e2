#pragma once

#include <functional>

#include "hosts/simulated/world.h"
#include "platform/scripts.h"

namespace keyvora::simulated {

/// Records what was run, and returns the outcome that a test set.
class Scripts final : public platform::Scripts {
 public:
  explicit Scripts(World& world) : world_(world) {}

  /// The outcome of scripts; initially success.
  platform::ScriptOutcome outcome{true, std::nullopt};

  platform::ScriptOutcome run(const std::string& source) override {
    if (world_.fails(Call::runScript)) return {};
    world_.trace.add(trace::ScriptRun{source});
    return outcome;
  }

 private:
  World& world_;
};

}  // namespace keyvora::simulated
