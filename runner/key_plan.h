#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora {

/// One character of key tips and the key that types it.
struct PlannedKey {
  /// User-perceived, upper-case.
  std::string character;
  /// Virtual key code; `platform::key_code::none` for a character that no key types.
  std::uint16_t code = 0;

  friend bool operator==(const PlannedKey&, const PlannedKey&) = default;
};

/// The keys to type for key tips: the characters of the upper-cased text without white space, in order,
/// each with its key code. Key names of several letters ("f1", "space") are read as single characters. Any
/// thread.
std::vector<PlannedKey> keyPlan(std::string_view keys);

/// The first character of the plan that no key types; none when all of it can be typed.
std::optional<std::string> firstWithoutKey(const std::vector<PlannedKey>& plan);

}  // namespace keyvora
