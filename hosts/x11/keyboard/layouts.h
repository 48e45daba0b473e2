#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/keyboard_layout.h"

namespace keyvora::x11 {

/// The keyboard layout with this name, as used by setxkbmap: "fr", or "ch(fr)" with a variant. Its keys are
/// the virtual key codes of synthetic events. None when there is no such layout. Reads the system's keyboard
/// files and needs no display; takes tens of milliseconds. Any thread.
std::optional<platform::KeyboardLayout> layoutNamed(const std::string& name);

/// Names of common layouts, which are in the keyboard files of every system.
std::vector<std::string> commonLayouts();

}  // namespace keyvora::x11
