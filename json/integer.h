#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace keyvora::json {

enum class NotAnInteger { fraction, outOfRange };

/// A number, by the grammar of JSON, as a 64-bit integer. `1.0` and `1e2` are integers. A number that is
/// written with a point or an exponent counts as what it is as a double, as the platform's decoder has it;
/// beyond 2^53, where doubles leave integers out, its digits count.
std::variant<std::int64_t, NotAnInteger> integer(std::string_view number);

}  // namespace keyvora::json
