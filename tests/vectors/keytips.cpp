#include "runner/key_plan.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

std::string described(const std::vector<PlannedKey>& plan) {
  if (const auto missing = firstWithoutKey(plan)) return "missing " + *missing;
  std::string text = "plan";
  for (const auto& key : plan) text += " " + key.character + ":" + std::to_string(key.code);
  return text;
}

std::vector<PlannedKey> asPlan(const Line& value) {
  if (!value.IsArray()) throw MalformedLine("expected a plan, found " + shown(value));
  std::vector<PlannedKey> plan;
  for (const auto& key : value.GetArray()) {
    if (!key.IsArray() || key.Size() != 2) throw MalformedLine("expected a pair, found " + shown(key));
    plan.push_back({asString(key[0]), static_cast<std::uint16_t>(asInteger(key[1]))});
  }
  return plan;
}

}  // namespace

/// The `keys` of key tips and the `plan` for typing them, or the first character `missing` from the
/// keyboard.
std::optional<Mismatch> checkKeytips(const Line& line) {
  const auto expected = line.HasMember("missing") ? "missing " + stringField(line, "missing")
                                                  : described(asPlan(field(line, "plan")));
  const auto actual = described(keyPlan(stringField(line, "keys")));
  if (actual == expected) return {};
  return Mismatch{expected, actual};
}

}  // namespace keyvora::vectors
