#include "tests/vectors/line.h"
#include "text/text.h"

namespace keyvora::vectors {

/// Strings `a` and `b` and whether they are `equal`.
std::optional<Mismatch> checkEqual(const Line& line) {
  const std::string a = stringField(line, "a");
  const std::string b = stringField(line, "b");
  const bool expected = boolField(line, "equal");
  const bool actual = text::equal(a, b);
  if (actual == expected && text::equal(b, a) == expected) return {};
  return Mismatch{expected ? "equal" : "not equal", actual ? "equal" : "not equal"};
}

}  // namespace keyvora::vectors
