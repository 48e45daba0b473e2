#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keyvora::x11 {

/// The shortcut in a key binding of the accessibility bus, "mnemonic;path of mnemonics;<Primary><Shift>v", as
/// the door tells it: "command+shift+v". None where the binding has no shortcut, or one with a key or a
/// modifier that documents cannot name.
std::optional<std::string> shortcutIn(std::string_view binding);

}  // namespace keyvora::x11
