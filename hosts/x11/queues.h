#pragma once

#include "hosts/posix/queues.h"
#include "hosts/x11/applications/target_window.h"

namespace keyvora::x11 {

/// Background work on threads. A plan types into the window that was the target's when it was given, even if
/// the user has gone on to another one. To be destroyed before whatever its plans and work use.
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
