#pragma once

#include <cstdint>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {

/// The meaning of a key at the moment it is pressed.
struct KeyMeaning {
  /// `key_code::none` for a key without a code on macOS, and for a modifier without one.
  std::uint16_t keyCode = key_code::none;
  /// Whether its events are flagsChanged, not keyDown and keyUp.
  bool isModifier = false;
  /// The flag in events while it is down; 0 for none.
  std::uint64_t flag = 0;
};

/// The meaning of a key at this place (a virtual key code) that makes this X key symbol without modifiers.
/// Modifiers are identified by their symbol: Option is the key that makes Alt or Meta, in any place. A key
/// that selects third-level characters is not Option, but sets the Option flag for keys typed with it. All
/// other keys are identified by their place, whatever character they make.
KeyMeaning keyMeaning(unsigned long symbol, std::uint16_t place);

}  // namespace keyvora::x11
