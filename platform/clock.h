#pragma once

#include <string>

namespace keyvora::platform {

/// The wall clock.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The current date and time as "yyyy-MM-dd HH:mm:ss", in the user's time zone and locale. Any thread.
  virtual std::string localTime() = 0;
};

}  // namespace keyvora::platform
