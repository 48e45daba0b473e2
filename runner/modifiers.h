#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/keyboard.h"

namespace keyvora {

/// A name for a modifier of a keystroke, and the modifier's bit in an event's flags.
struct ModifierName {
  /// Lower-case.
  std::string_view name;
  std::uint64_t flag = 0;
};

/// Every name of a modifier.
inline constexpr std::array<ModifierName, 7> modifierNames{{
    {"command", platform::event_flag::command},
    {"cmd", platform::event_flag::command},
    {"option", platform::event_flag::option},
    {"alt", platform::event_flag::option},
    {"control", platform::event_flag::control},
    {"ctrl", platform::event_flag::control},
    {"shift", platform::event_flag::shift},
}};

/// The flag of the modifier with this name, case ignored; none for any other text. Nothing is trimmed.
std::optional<std::uint64_t> modifierFlag(std::string_view name);

/// The flags of all named modifiers; unknown names are ignored.
std::uint64_t modifierFlags(std::span<const std::string> names);

}  // namespace keyvora
