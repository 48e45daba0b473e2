#include "hosts/posix/clock.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <regex>
#include <string>
#include <thread>

namespace keyvora::posix {
namespace {

/// Sets the time zone as long as it exists.
class Zone {
 public:
  explicit Zone(const char* name) {
    if (const char* value = std::getenv("TZ")) before_ = value;
    ::setenv("TZ", name, 1);
  }
  ~Zone() {
    if (before_) {
      ::setenv("TZ", before_->c_str(), 1);
    } else {
      ::unsetenv("TZ");
    }
    ::tzset();
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;

 private:
  std::optional<std::string> before_;
};

std::time_t secondsOf(const std::string& stamp) {
  std::tm time{};
  EXPECT_EQ(::strptime(stamp.c_str(), "%Y-%m-%d %H:%M:%S", &time), stamp.data() + stamp.size()) << stamp;
  return ::timegm(&time);
}

TEST(PosixClockTest, GivesDateAndTimeInNineteenCharacters) {
  Clock clock;
  const std::regex shape("\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}");
  EXPECT_TRUE(std::regex_match(clock.localTime(), shape)) << clock.localTime();
}

TEST(PosixClockTest, FollowsTheUsersZone) {
  const struct {
    const char* zone;
    std::time_t offset;
  } rows[] = {{"UTC0", 0}, {"AAA-05:30", 19'800}, {"BBB+8", -28'800}};
  for (const auto& row : rows) {
    const Zone zone(row.zone);
    Clock clock;
    const auto before = std::time(nullptr);
    const auto local = secondsOf(clock.localTime());
    const auto after = std::time(nullptr);
    EXPECT_GE(local, before + row.offset) << row.zone;
    EXPECT_LE(local, after + row.offset) << row.zone;
  }
}

TEST(PosixClockTest, MayBeAskedFromManyThreads) {
  const Zone zone("UTC0");
  Clock clock;
  const auto before = std::time(nullptr);
  const auto ask = [&] {
    for (int n = 0; n < 1000; ++n) EXPECT_GE(secondsOf(clock.localTime()), before);
  };
  std::array threads{std::thread(ask), std::thread(ask), std::thread(ask), std::thread(ask)};
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace keyvora::posix
