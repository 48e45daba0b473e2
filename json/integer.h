#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace keyvora::json {

enum class NotAnInteger { fraction, outOfRange };

/// A JSON number as a 64-bit integer. `1.0` and `1e2` are integers. A number with a point or an exponent is
/// converted to a double first, as the platform's decoder does; beyond 2^53, where not every integer is a
/// double, its digits are converted exactly.
std::variant<std::int64_t, NotAnInteger> integer(std::string_view number);

}  // namespace keyvora::json
