#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Letters as the tap defines them: those that keys can type.
namespace keyvora::tools {

/// The virtual key code of the key that types this letter; none when no key does.
std::optional<std::uint16_t> keyTyping(std::string_view letter);

/// The first letter that no key types; none when keys type all of them.
std::optional<std::string> firstUntypable(std::span<const std::string> letters);

/// The letters joined to one string.
std::string joined(std::span<const std::string> letters);

}  // namespace keyvora::tools
