#pragma once

#include "platform/queues.h"

namespace keyvora::macos {

/// Dispatch queues: serial ones of keyvora's, and the global user-interactive one for plans.
class Queues final : public platform::Queues {
 public:
  std::unique_ptr<platform::SerialQueue> createSerial(const std::string& label) override;
  void walk(platform::Plan plan) override;
};

}  // namespace keyvora::macos
