#pragma once

#include <cstdint>

#include "hosts/x11/keyboard/key_codes.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// The flag of a modifier key; 0 for any other key, and for Caps Lock.
constexpr std::uint64_t flagOf(std::uint16_t keyCode) {
  switch (keyCode) {
    case key_code::leftShift:
    case key_code::rightShift:
      return platform::event_flag::shift;
    case key_code::leftControl:
    case key_code::rightControl:
      return platform::event_flag::control;
    case key_code::leftOption:
    case key_code::rightOption:
      return platform::event_flag::option;
    case key_code::leftCommand:
    case key_code::rightCommand:
      return platform::event_flag::command;
    default:
      return 0;
  }
}

/// Which modifier keys are down, and the flags that makes. By the keys themselves and not by what the layout
/// turns them into: the right Alt key of many layouts types third-level characters and sets another modifier
/// bit, and a character typed with it must still count as typed with Option.
class ModifierState {
 public:
  void set(std::uint16_t keyCode, bool down) {
    if (!isModifier(keyCode)) return;
    const auto bit = std::uint16_t(1U << (keyCode - key_code::rightCommand));
    held_ = std::uint16_t(down ? held_ | bit : held_ & ~bit);
  }

  void clear() { held_ = 0; }

  [[nodiscard]] std::uint64_t flags() const {
    std::uint64_t flags = 0;
    for (auto key = key_code::rightCommand; key <= key_code::rightControl; ++key) {
      if ((held_ >> (key - key_code::rightCommand) & 1U) != 0) flags |= flagOf(key);
    }
    return flags;
  }

 private:
  std::uint16_t held_ = 0;
};

}  // namespace keyvora::x11
