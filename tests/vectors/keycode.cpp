#include "runner/key_names.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

std::string described(std::optional<std::int64_t> code) {
  return code ? std::to_string(*code) : "null";
}

}  // namespace

/// The name of a `key` and its `code`, or null.
std::optional<Mismatch> checkKeycode(const Line& line) {
  const auto& code = field(line, "code");
  const auto expected = described(code.IsNull() ? std::nullopt : std::optional(asInteger(code)));
  const auto actual = described(keyCodeFor(stringField(line, "key")));
  if (actual == expected) return {};
  return Mismatch{expected, actual};
}

}  // namespace keyvora::vectors
