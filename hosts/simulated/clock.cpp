#include "hosts/simulated/clock.h"

#include <array>
#include <cstdio>

namespace keyvora::simulated {

std::string Clock::localTime() {
  if (world_.fails(Call::localTime)) return {};
  using namespace std::chrono;
  constexpr auto start = sys_days(2026y / January / 2) + 3h + 4min + 5s;
  const auto time = start + floor<seconds>(loop_.now());
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

}  // namespace keyvora::simulated
