#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keyvora::x11 {

/// The shortcut in a key binding of the accessibility bus, "mnemonic;path of mnemonics;<Primary><Shift>v",
/// in the door's form: "command+shift+v". None when the binding has no shortcut, or one with a key or
/// modifier that documents cannot name.
std::optional<std::string> shortcutIn(std::string_view binding);

}  // namespace keyvora::x11
