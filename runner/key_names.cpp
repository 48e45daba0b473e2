#include "runner/key_names.h"

#include "text/text.h"

namespace keyvora {

std::optional<std::uint16_t> keyCodeFor(std::string_view name) {
  // Canonical equivalence matters even here: the Greek question mark is a semicolon.
  const auto lower = text::lowerCased(name);
  for (const auto& key : keyNames) {
    if (text::equal(key.name, lower)) return key.code;
  }
  return std::nullopt;
}

}  // namespace keyvora
