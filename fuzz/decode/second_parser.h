#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mapping/mapping.h"

/// JSON and mapping documents as another parser (nlohmann-json) reads them.
namespace keyvora::fuzz {

/// A document as a list of words: "{", "key a", "text b", "number 1", "}", ... in the document's order.
using Words = std::vector<std::string>;

/// The second parser's result for the bytes, which it takes as UTF-8.
struct SecondReading {
  Words words;
  bool accepted = false;
  /// Rejected only because a number is out of its range; our dialect accepts it.
  bool numberTooLarge = false;
};

SecondReading readAgain(std::string_view bytes);

/// The second parser's document as a mapping; none when it is not one. Keys must be ASCII and unique, and
/// numbers without a fraction or exponent.
std::optional<Mapping> decodeAgain(std::string_view bytes);

}  // namespace keyvora::fuzz
