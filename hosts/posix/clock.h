#pragma once

#include <clocale>
#include <cstdint>

#if __has_include(<xlocale.h>)  // some C libraries declare locale_t there
#include <xlocale.h>
#endif

#include "platform/clock.h"

namespace keyvora::posix {

/// The system's clock in the user's time zone, with the digits and the calendar of the C library for the
/// user's locale. A change of the zone takes effect at the next second. Each thread formats at most once a
/// second, under a lock; otherwise no lock is taken.
class Clock final : public platform::Clock {
 public:
  Clock();
  ~Clock() override;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;

  std::string localTime() override;

 private:
  locale_t locale_;
  /// Distinguishes this clock from an earlier one at the same address.
  std::uint64_t serial_;
};

}  // namespace keyvora::posix
