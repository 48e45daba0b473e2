#include "runner/key_plan.h"

#include <algorithm>

#include "platform/key_code.h"
#include "runner/key_names.h"
#include "text/text.h"

namespace keyvora {

std::vector<PlannedKey> keyPlan(std::string_view keys) {
  std::string cleaned;
  for (const auto& character : text::characters(text::upperCased(keys))) {
    if (!text::isWhiteSpace(character)) cleaned += character;
  }
  // Split again: characters that white space separated may combine now, such as a letter and an accent.
  std::vector<PlannedKey> plan;
  for (auto& character : text::characters(cleaned)) {
    const auto code = keyCodeFor(character).value_or(platform::key_code::none);
    plan.push_back({std::move(character), code});
  }
  return plan;
}

std::optional<std::string> firstWithoutKey(const std::vector<PlannedKey>& plan) {
  const auto found = std::ranges::find(plan, platform::key_code::none, &PlannedKey::code);
  if (found == plan.end()) return std::nullopt;
  return found->character;
}

}  // namespace keyvora
