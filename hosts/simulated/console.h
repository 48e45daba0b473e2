#pragma once

#include <string>

#include "hosts/simulated/world.h"
#include "platform/console.h"

namespace keyvora::simulated {

/// Records what was written.
class Console final : public platform::Console {
 public:
  explicit Console(World& world) : world_(world) {}

  void write(std::string_view record) override {
    if (!world_.fails(Call::writeConsole)) world_.trace.add(trace::Console{std::string(record)});
  }

 private:
  World& world_;
};

}  // namespace keyvora::simulated
