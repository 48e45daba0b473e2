#include "mapping/mapping.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {

/// A sequence's `keys` and its `letters`, which must have the same code points.
std::optional<Mismatch> checkLetters(const Line& line) {
  const Sequence sequence{stringField(line, "keys"), {}, {}};
  const auto expected = stringsField(line, "letters");
  const auto actual = sequence.letters();
  if (actual == expected) return {};
  return Mismatch{shown(expected), shown(actual)};
}

}  // namespace keyvora::vectors
