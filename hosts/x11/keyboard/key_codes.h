#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/key_code.h"

/// Keys by their place on the keyboard: XKB's key names ("AD01" is the first key of the row above the home
/// row) and the virtual key codes of macOS (platform/key_code.h). Both name places, so neither depends on
/// the layout. Option is the Alt key, Command is the Control key and Control is the Super key, as in
/// cross-platform toolkits.
namespace keyvora::x11 {

namespace key_code = platform::key_code;

/// The virtual key code of the key with this XKB name, `key_code::none` for none.
std::uint16_t keyCodeNamed(std::string_view xkbName);

/// The XKB name of a key; none when there is no such key on this system.
std::optional<std::string_view> keyName(std::uint16_t keyCode);

/// Whether the key is a modifier: its events are flagsChanged, not keyDown and keyUp.
constexpr bool isModifier(std::uint16_t keyCode) {
  return keyCode >= key_code::rightCommand && keyCode <= key_code::rightControl;
}

}  // namespace keyvora::x11
