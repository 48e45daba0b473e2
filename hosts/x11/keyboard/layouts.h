#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/keyboard_layout.h"

namespace keyvora::x11 {

/// The keyboard layout with this name, as setxkbmap names them: "fr", or "ch(fr)" with a variant. What keys
/// type in it, by the virtual key codes that events are made for. None when there is no such layout. Reads
/// the system's keyboard files and needs no display; tens of milliseconds. Any thread.
std::optional<platform::KeyboardLayout> layoutNamed(const std::string& name);

/// Names of common layouts that every system with keyboard files has.
std::vector<std::string> commonLayouts();

}  // namespace keyvora::x11
