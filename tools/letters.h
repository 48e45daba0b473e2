#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Letters as the tap knows them: what its keys can type.
namespace keyvora::tools {

/// The virtual key code of the key that types this letter; none when no key does.
std::optional<std::uint16_t> keyTyping(std::string_view letter);

/// The first letter that no key types; none when all can be typed.
std::optional<std::string> firstUntypable(std::span<const std::string> letters);

/// The letters side by side.
std::string joined(std::span<const std::string> letters);

}  // namespace keyvora::tools
