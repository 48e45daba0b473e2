#pragma once

#include <X11/Xlib.h>

#include <array>
#include <cstdint>
#include <optional>

namespace keyvora::x11 {

/// The display's own numbers for keys, by the names that its keyboard description gives them. Follows changes
/// of the description. Used by the thread that has the connection.
class KeyMap {
 public:
  /// Reads the keyboard description and asks to be told of changes.
  explicit KeyMap(Display* display);

  /// Looks at an event of the connection; true when it said that the description changed.
  bool notice(const XEvent& event);

  /// The virtual key code of the key that the display calls `keycode`; `key_code::none` for none.
  [[nodiscard]] std::uint16_t keyCode(unsigned keycode) const { return keyCodes_[keycode & 0xFF]; }

  /// The display's number for a key; none when the keyboard has no such key.
  [[nodiscard]] std::optional<KeyCode> keycode(std::uint16_t keyCode) const;

  /// The core modifier bits for event flags, by what the keys of those modifiers do in this layout.
  [[nodiscard]] unsigned modifierBits(std::uint64_t flags) const;

 private:
  void read();

  Display* display_;
  int xkbEvent_ = 0;
  std::array<std::uint16_t, 256> keyCodes_{};
  std::array<KeyCode, 128> keycodes_{};  // the way back; 0 for none
  std::array<std::uint8_t, 256> modifiers_{};
};

}  // namespace keyvora::x11
