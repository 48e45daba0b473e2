#include "hosts/posix/clock.h"

#include <array>
#include <atomic>
#include <ctime>
#include <mutex>

namespace keyvora::posix {
namespace {

/// The last formatted time of this thread.
struct Stamp {
  std::time_t second = -1;
  std::uint64_t clock = 0;
  std::array<char, 64> text{};
  std::size_t length = 0;
};

thread_local Stamp last;
std::atomic<std::uint64_t> clocksMade = 0;

/// `tzset` reads the zone into variables of the process: one thread at a time.
std::mutex zoneMutex;

std::tm localTimeOf(std::time_t second) {
  const std::scoped_lock lock(zoneMutex);
  ::tzset();  // localtime_r alone keeps the zone of the process's start
  std::tm time{};
  ::localtime_r(&second, &time);
  return time;
}

}  // namespace

Clock::Clock() : locale_(::newlocale(LC_TIME_MASK, "", nullptr)), serial_(++clocksMade) {
  // The user's locale is not installed; this one always is.
  if (!locale_) locale_ = ::newlocale(LC_TIME_MASK, "C", nullptr);
}

Clock::~Clock() {
  ::freelocale(locale_);
}

std::string Clock::localTime() {
  const auto now = std::time(nullptr);
  if (now != last.second || last.clock != serial_) {
    const auto time = localTimeOf(now);
    last.length = ::strftime_l(last.text.data(), last.text.size(), "%Y-%m-%d %H:%M:%S", &time, locale_);
    last.second = now;
    last.clock = serial_;
  }
  return {last.text.data(), last.length};
}

}  // namespace keyvora::posix
