#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Keys by their place on the keyboard: XKB's key names ("AD01" is the first key of the row above the home
/// row) and the virtual key codes of macOS (Events.h). Both name places, so neither depends on the layout.
namespace keyvora::x11 {

/// A key that macOS has no code for, or one that is none of the program's business.
inline constexpr std::uint16_t unknownKey = 0xFFFF;

/// The virtual key codes of the modifier keys. Option is the Alt key, Command is the Control key and Control
/// is the Super key, as toolkits for several systems have it.
namespace modifier_key {
inline constexpr std::uint16_t rightCommand = 54;
inline constexpr std::uint16_t leftCommand = 55;
inline constexpr std::uint16_t leftShift = 56;
inline constexpr std::uint16_t capsLock = 57;
inline constexpr std::uint16_t leftOption = 58;
inline constexpr std::uint16_t leftControl = 59;
inline constexpr std::uint16_t rightShift = 60;
inline constexpr std::uint16_t rightOption = 61;
inline constexpr std::uint16_t rightControl = 62;
}  // namespace modifier_key

/// The virtual key code of the key with this XKB name, `unknownKey` for none.
std::uint16_t keyCodeNamed(std::string_view xkbName);

/// The XKB name of a key; none when there is no such key on this system.
std::optional<std::string_view> keyName(std::uint16_t keyCode);

/// Whether the key is a modifier: its events are flagsChanged, not keyDown and keyUp.
constexpr bool isModifier(std::uint16_t keyCode) {
  return keyCode >= modifier_key::rightCommand && keyCode <= modifier_key::rightControl;
}

constexpr bool isOption(std::uint16_t keyCode) {
  return keyCode == modifier_key::leftOption || keyCode == modifier_key::rightOption;
}

}  // namespace keyvora::x11
