#pragma once

#include "hosts/simulated/main_loop.h"
#include "platform/clock.h"

namespace keyvora::simulated {

/// The wall clock: starts at "2026-01-02 03:04:05" and advances with the virtual clock.
class Clock final : public platform::Clock {
 public:
  Clock(World& world, MainLoop& loop) : world_(world), loop_(loop) {}

  std::string localTime() override;

 private:
  World& world_;
  MainLoop& loop_;
};

}  // namespace keyvora::simulated
