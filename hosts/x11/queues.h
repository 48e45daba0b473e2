#pragma once

#include "hosts/posix/queues.h"
#include "hosts/x11/applications/target_window.h"

namespace keyvora::x11 {

/// Background work on threads. A plan types into the window that was the target when the plan was
/// submitted, even if the user has changed to another window since. Must be destroyed before everything
/// that its plans and work use.
class Queues final : public platform::Queues {
 public:
  explicit Queues(const TargetWindow& target) : target_(target) {}

  std::unique_ptr<platform::SerialQueue> createSerial(const std::string& label) override;
  void walk(platform::Plan plan) override;

 private:
  const TargetWindow& target_;
  posix::Queues threads_;
};

}  // namespace keyvora::x11
