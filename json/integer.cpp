#include "json/integer.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace keyvora::json {
namespace {

struct DoubleHandler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, DoubleHandler> {
  double value = 0;
  bool Double(double number) {
    value = number;
    return true;
  }
};

/// How a double is rounded depends on so many digits and on whether anything but noughts follows.
constexpr std::size_t telling = 767;

/// A number other than nought: `digits` times ten to the power of `exponent`. No digit at either end is a 0,
/// and whatever follows those that tell is a 1.
struct Decimal {
  bool negative = false;
  std::string digits;
  long long exponent = 0;

  /// The power of ten that the first digit counts.
  [[nodiscard]] long long magnitude() const { return exponent + static_cast<long long>(digits.size()) - 1; }
};

Decimal decimal(std::string_view number) {
  Decimal result;
  result.negative = number.front() == '-';
  if (result.negative) number.remove_prefix(1);
  if (const auto at = number.find_first_of("eE"); at != number.npos) {
    auto written = number.substr(at + 1);
    if (written.front() == '+') written.remove_prefix(1);
    const auto [end, error] =
        std::from_chars(written.data(), written.data() + written.size(), result.exponent);
    // Beyond any double, whatever the digits.
    constexpr long long far = 10'000'000'000;
    if (error != std::errc()) result.exponent = written.front() == '-' ? -far : far;
    result.exponent = std::clamp(result.exponent, -far, far);
    number = number.substr(0, at);
  }
  bool behindPoint = false;
  bool more = false;
  for (const char c : number) {
    if (c == '.') {
      behindPoint = true;
    } else if (result.digits.size() == telling) {
      more = more || c != '0';
      if (!behindPoint) ++result.exponent;
    } else {
      if (!result.digits.empty() || c != '0') result.digits += c;
      if (behindPoint) --result.exponent;
    }
  }
  if (more) {
    result.digits += '1';
    --result.exponent;
  }
  for (; result.digits.back() == '0'; ++result.exponent) result.digits.pop_back();
  return result;
}

/// Whether it is too small for a double, and so counts as nought: not above 2^-1075.
bool vanishes(const Decimal& number) {
  constexpr int magnitude = -324;
  constexpr std::string_view digits = "247032822920623272088284396434110686182529901307162382212792";
  return number.magnitude() < magnitude || (number.magnitude() == magnitude && number.digits < digits);
}

/// A number that is neither very large nor very small as a double. It is shown to the parser with one digit
/// before the point: some versions turn away long ones whatever the exponent. About the largest and smallest
/// doubles version 1.1.0 gives wrong ones, or reads outside its table of powers of ten.
double asDouble(const Decimal& number) {
  const auto text = (number.negative ? "-" : "") + number.digits.substr(0, 1) + "." +
                    number.digits.substr(1) + "0e" + std::to_string(number.magnitude());
  rapidjson::MemoryStream stream(text.data(), text.size());
  DoubleHandler handler;
  rapidjson::Reader reader;
  reader.Parse<rapidjson::kParseFullPrecisionFlag>(stream, handler);
  return handler.value;
}

/// The value of a number that is known to be between 2^53 and 2^63, exactly.
std::variant<std::int64_t, NotAnInteger> exactly(const Decimal& number) {
  if (number.exponent < 0) return NotAnInteger::fraction;
  const auto text = (number.negative ? "-" : "") + number.digits +
                    std::string(static_cast<std::size_t>(number.exponent), '0');
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
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
  const auto exact = decimal(number);
  constexpr int largestMagnitude = 18;  // of 2^63
  if (exact.magnitude() > largestMagnitude) return NotAnInteger::outOfRange;
  if (vanishes(exact)) return 0;
  if (exact.magnitude() < -1) return NotAnInteger::fraction;
  const double rounded = asDouble(exact);
  constexpr double range = 9223372036854775808.0;
  constexpr double everyInteger = 9007199254740992.0;
  if (std::trunc(rounded) != rounded) return NotAnInteger::fraction;
  if (rounded < -range || rounded >= range) return NotAnInteger::outOfRange;
  if (std::abs(rounded) < everyInteger) return static_cast<std::int64_t>(rounded);
  return exactly(exact);
}

}  // namespace keyvora::json
