#include "mapping/json_integer.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <system_error>

namespace keyvora::json {
namespace {

struct DoubleHandler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, DoubleHandler> {
  std::optional<double> value;
  bool Double(double number) {
    value = number;
    return true;
  }
};

/// The number as a double; none when it is too large for one.
std::optional<double> asDouble(std::string_view number) {
  rapidjson::MemoryStream stream(number.data(), number.size());
  DoubleHandler handler;
  rapidjson::Reader reader;
  reader.Parse<rapidjson::kParseFullPrecisionFlag>(stream, handler);
  return handler.value;
}

/// The value of digits with a point and an exponent, exactly. The number is known to be between 2^53 and
/// 2^63.
std::variant<std::int64_t, NotAnInteger> exactly(std::string_view number) {
  const bool negative = number.front() == '-';
  const std::size_t exponentAt = number.find_first_of("eE");
  std::string digits(number.substr(negative ? 1 : 0, exponentAt - (negative ? 1 : 0)));
  long long exponent = 0;
  if (exponentAt != std::string_view::npos) {
    auto written = number.substr(exponentAt + 1);
    if (written.front() == '+') written.remove_prefix(1);
    std::from_chars(written.data(), written.data() + written.size(), exponent);
  }
  if (const std::size_t point = digits.find('.'); point != std::string::npos) {
    exponent -= static_cast<long long>(digits.size() - point - 1);
    digits.erase(point, 1);
  }
  while (exponent < 0 && !digits.empty() && digits.back() == '0') {
    digits.pop_back();
    ++exponent;
  }
  if (exponent < 0) return NotAnInteger::fraction;
  if (negative) digits.insert(digits.begin(), '-');
  // A double cannot be this large by more zeros than it has room for.
  digits.append(static_cast<std::size_t>(exponent), '0');
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc()) return NotAnInteger::outOfRange;
  return value;
}

}  // namespace

std::variant<std::int64_t, NotAnInteger> integer(std::string_view number) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (end == number.data() + number.size()) {
    if (error == std::errc()) return value;
    return NotAnInteger::outOfRange;
  }
  const auto significand = number.substr(0, number.find_first_of("eE"));
  if (significand.find_first_of("123456789") == std::string_view::npos) return 0;
  const auto asDoubled = asDouble(number);
  constexpr double range = 9223372036854775808.0;
  constexpr double everyInteger = 9007199254740992.0;
  if (!asDoubled) return NotAnInteger::outOfRange;
  if (std::trunc(*asDoubled) != *asDoubled) return NotAnInteger::fraction;
  if (*asDoubled < -range || *asDoubled >= range) return NotAnInteger::outOfRange;
  if (std::abs(*asDoubled) < everyInteger) return static_cast<std::int64_t>(*asDoubled);
  return exactly(number);
}

}  // namespace keyvora::json
