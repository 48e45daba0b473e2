#pragma once

#include <array>
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

/// The flags of the modifier keys that are down. Each key keeps the flag it had when it went down, because
/// its meaning may change while it is held. Keys are X keycodes.
class ModifierState {
 public:
  void press(unsigned keycode, std::uint64_t flag) { flags_[keycode & 0xFF] = flag; }
  void release(unsigned keycode) { flags_[keycode & 0xFF] = 0; }
  void clear() { flags_.fill(0); }

  [[nodiscard]] std::uint64_t flags() const {
    std::uint64_t all = 0;
    for (const auto flag : flags_) all |= flag;
    return all;
  }

 private:
  std::array<std::uint64_t, 256> flags_{};
};

}  // namespace keyvora::x11
