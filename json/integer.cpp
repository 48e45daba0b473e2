#include "json/integer.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include "text/ascii.h"

namespace keyvora::json {
namespace {

template <class Number>
bool isWhole(std::string_view text, Number& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

/// The exact value of a number between 2^53 and 2^63: its digits, with the decimal point moved by the
/// exponent.
std::variant<std::int64_t, NotAnInteger> exactly(std::string_view number) {
  const auto mark = std::min(number.find_first_of("eE"), number.size());
  std::string digits;
  long long exponent = 0;
  if (mark < number.size()) {
    const auto written = number.substr(mark + (number[mark + 1] == '+' ? 2 : 1));
    isWhole(written, exponent);
  }
  bool behindPoint = false;
  for (const char c : number.substr(0, mark)) {
    behindPoint = behindPoint || c == '.';
    if (!text::isAsciiDigit(c)) continue;
    digits += c;
    if (behindPoint) --exponent;
  }
  const auto length = static_cast<std::size_t>(static_cast<long long>(digits.size()) + exponent);
  if (digits.find_first_not_of('0', length) != digits.npos) return NotAnInteger::fraction;
  digits.resize(length, '0');
  std::int64_t value = 0;
  if (!isWhole((number.front() == '-' ? "-" : "") + digits, value)) return NotAnInteger::outOfRange;
  return value;
}

}  // namespace

std::variant<std::int64_t, NotAnInteger> integer(std::string_view number) {
  if (number.find_first_of(".eE") == number.npos) {
    std::int64_t value = 0;
    if (isWhole(number, value)) return value;
    return NotAnInteger::outOfRange;
  }
  double rounded = 0;
  fast_float::from_chars(number.data(), number.data() + number.size(),
                         rounded);  // infinite when out of range
  constexpr double range = 9223372036854775808.0;
  constexpr double everyInteger = 9007199254740992.0;
  if (rounded < -range || rounded >= range) return NotAnInteger::outOfRange;
  if (std::trunc(rounded) != rounded) return NotAnInteger::fraction;
  if (std::abs(rounded) < everyInteger) return static_cast<std::int64_t>(rounded);
  return exactly(number);
}

}  // namespace keyvora::json
