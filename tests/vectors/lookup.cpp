#include "mapping/mapping.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

std::string described(std::optional<std::int64_t> exact, bool isPrefixOfLonger) {
  return "exact " + (exact ? std::to_string(*exact) : "null") + ", isPrefixOfLonger " +
         (isPrefixOfLonger ? "true" : "false");
}

}  // namespace

/// The `keys` of a document's sequences and the `typed` letters, with the index of the `exact` match and
/// whether they are `isPrefixOfLonger`.
std::optional<Mismatch> checkLookup(const Line& line) {
  Mapping mapping;
  for (auto& keys : stringsField(line, "keys")) mapping.sequences.push_back({std::move(keys), {}, {}});
  const Match match = mapping.lookup(stringsField(line, "typed"));

  std::optional<std::int64_t> exact;
  if (match.exact != nullptr) exact = match.exact - mapping.sequences.data();
  const auto& expectedExact = field(line, "exact");
  const auto expected =
      described(expectedExact.IsNull() ? std::nullopt : std::optional(asInteger(expectedExact)),
                boolField(line, "isPrefixOfLonger"));
  const auto actual = described(exact, match.isPrefixOfLonger);
  if (actual == expected) return {};
  return Mismatch{expected, actual};
}

}  // namespace keyvora::vectors
