#pragma once

#include <clocale>
#include <cstdint>

#if __has_include(<xlocale.h>)  // where a C library keeps locale_t apart
#include <xlocale.h>
#endif

#include "platform/clock.h"

namespace keyvora::posix {

/// The system's clock in the user's time zone, with the numerals and the calendar that the C library gives
/// the user's locale. A change of the zone is followed from the next second on. Each thread that asks formats
/// once a second, one at a time; in between no lock is taken.
class Clock final : public platform::Clock {
 public:
  Clock();
  ~Clock() override;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;

  std::string localTime() override;

 private:
  locale_t locale_;
  /// Tells this clock from one that was at the same address before.
  std::uint64_t serial_;
};

}  // namespace keyvora::posix
