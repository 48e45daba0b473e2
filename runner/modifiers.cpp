#include "runner/modifiers.h"

#include "text/text.h"

namespace keyvora {

std::optional<std::uint64_t> modifierFlag(std::string_view name) {
  const auto lower = text::lowerCased(name);
  for (const auto& modifier : modifierNames) {
    if (modifier.name == lower) return modifier.flag;
  }
  return std::nullopt;
}

std::uint64_t modifierFlags(std::span<const std::string> names) {
  std::uint64_t flags = 0;
  for (const auto& name : names) flags |= modifierFlag(name).value_or(0);
  return flags;
}

}  // namespace keyvora
