#pragma once

#include <cstdint>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {

/// What a key is to the tap when it goes down.
struct KeyMeaning {
  /// `key_code::none` for a key that macOS has no code for, and for a modifier that it does not know.
  std::uint16_t keyCode = key_code::none;
  /// Whether its events are flagsChanged, not keyDown and keyUp.
  bool isModifier = false;
  /// The flag of events while it is down; 0 for none.
  std::uint64_t flag = 0;
};

/// The meaning of a key at this place (a virtual key code) that makes this X key symbol, pressed alone.
/// Modifiers are what they do: Option is the key that makes Alt or Meta, wherever it is. A key that chooses
/// third-level characters is not Option, though what is typed with it counts as typed with Option. All other
/// keys are their place, whatever character they make.
KeyMeaning keyMeaning(unsigned long symbol, std::uint16_t place);

}  // namespace keyvora::x11
