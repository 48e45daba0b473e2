#include "json/integer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace keyvora::json {
namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

struct Row {
  std::string number;
  std::variant<std::int64_t, NotAnInteger> integer;
};

TEST(JsonInteger, IsExactInItsWholeRange) {
  constexpr auto fraction = NotAnInteger::fraction;
  constexpr auto outOfRange = NotAnInteger::outOfRange;
  const Row rows[] = {
      {"0", 0},
      {"-0", 0},
      {"-1", -1},
      {"9223372036854775807", largest},
      {"-9223372036854775808", smallest},
      {"9223372036854775808", outOfRange},
      {"-9223372036854775809", outOfRange},
      {"18446744073709551616", outOfRange},
      {"100000000000000000000000000000", outOfRange},
      {"1.0", 1},
      {"-0.0", 0},
      {"0e0", 0},
      {"0e400", 0},
      {"0.000e-400", 0},
      {"1e2", 100},
      {"1E+2", 100},
      {"12.50e1", 125},
      {"1200e-2", 12},
      {"1.5", fraction},
      {"12e-1", fraction},
      {"1e-2", fraction},
      {"1e18", 1000000000000000000},
      {"1e19", outOfRange},
      {"1e400", outOfRange},
      {"-1e400", outOfRange},
      {"5e308", outOfRange},  // the largest double is smaller
      {"1e99999999999999999999", outOfRange},
      {"9007199254740991.0", 9007199254740991},
      {"9007199254740993.0", 9007199254740993},
      {"-9007199254740993.0", -9007199254740993},
      {"9007199254740993.5", fraction},
      {"90071992547409930e-1", 9007199254740993},
      {"9.007199254740993e+15", 9007199254740993},
      {"9223372036854774784.0", 9223372036854774784},
      {"922337203685477478.4e1", 9223372036854774784},
      {"9223372036854775807.0", outOfRange},
      {"-9223372036854775808.0", smallest},
      // Integers, because the nearest double is one.
      {"1.0000000000000001", 1},
      {"1e-400", 0},
      {std::string(400, '1'), outOfRange},
      {"1" + std::string(400, '0') + "e-400", 1},
      {"1" + std::string(400, '0') + "1e-401", 1},
      {"9007199254740993" + std::string(800, '0') + "e-800", 9007199254740993},
      {"9007199254740993" + std::string(800, '0') + "1e-801", fraction},
      {"9007199254740991." + std::string(800, '0') + "1", 9007199254740991},
      {"-1.5e-99999999999999999999", 0},
      {"-12.50e99999999999999999999", outOfRange},
      {"15" + std::string(400, '0') + "e-401", fraction},
      {"0." + std::string(400, '0') + "1e401", 1},
      {"-0." + std::string(400, '0') + "15e401", fraction},
      // Around the smallest double: numbers below it become zero.
      {"2e-324", 0},
      {"3e-324", fraction},
      {"0." + std::string(322, '0') + "1", fraction},
      {"0." + std::string(390, '0') + "96660520535180771587", 0},
      {"-0." + std::string(100'000, '0') + "1", 0},
      {"1." + std::string(700, '1') + "e-340", 0},
      {"1." + std::string(700, '1') + "e-323", fraction},
      {std::string(1000, '1') + "e-1300", fraction},
      {std::string(1000, '1') + "e-1330", 0},
      {"1e-99999999999999999999", 0},
      // Distant digits decide on which side of a half a number is.
      {"4503599627370496.5" + std::string(900, '0'), 4503599627370496},
      {"4503599627370496.5" + std::string(900, '0') + "1", 4503599627370497},
      {"2251799813685249.25" + std::string(900, '0'), 2251799813685249},
      {"2251799813685249.25" + std::string(900, '0') + "1", fraction},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.number);
    EXPECT_EQ(integer(row.number), row.integer);
  }
}

}  // namespace
}  // namespace keyvora::json
