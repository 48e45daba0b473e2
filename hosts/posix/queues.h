#pragma once

#include "hosts/posix/plan_walkers.h"
#include "platform/queues.h"

namespace keyvora::posix {

/// Background work on threads. Must be destroyed before everything that its plans and work use: the
/// destructor waits for running work, and plans end at their next sleep.
class Queues final : public platform::Queues {
 public:
  std::unique_ptr<platform::SerialQueue> createSerial(const std::string& label) override;
  void walk(platform::Plan plan) override;

 private:
  PlanWalkers walkers_;
};

}  // namespace keyvora::posix
