#include "appcast/version_order.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {

/// Versions `a` and `b` and their `order`: -1 when `a` is older, 0, or 1.
std::optional<Mismatch> checkVersions(const Line& line) {
  const auto expected = asInteger(field(line, "order"));
  const int compared = appcast::compareVersions(stringField(line, "a"), stringField(line, "b"));
  const int actual = (compared > 0) - (compared < 0);
  if (actual == expected) return {};
  return Mismatch{std::to_string(expected), std::to_string(actual)};
}

}  // namespace keyvora::vectors
