#pragma once

#include "platform/clock.h"

namespace keyvora::macos {

/// Local time by one NSDateFormatter, which is safe to share once it is set up. Any thread.
class Clock final : public platform::Clock {
 public:
  std::string localTime() override;
};

}  // namespace keyvora::macos
