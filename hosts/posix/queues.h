#pragma once

#include "hosts/posix/plan_walkers.h"
#include "platform/queues.h"

namespace keyvora::posix {

/// Background work on threads. To be destroyed before whatever its plans and work use: a plan ends in its
/// next sleep, and is waited for.
class Queues final : public platform::Queues {
 public:
  std::unique_ptr<platform::SerialQueue> createSerial(const std::string& label) override;
  void walk(platform::Plan plan) override;

 private:
  PlanWalkers walkers_;
};

}  // namespace keyvora::posix
