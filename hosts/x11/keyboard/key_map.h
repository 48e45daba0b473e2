#pragma once

#include <X11/Xlib.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "hosts/x11/keyboard/key_meaning.h"

namespace keyvora::x11 {

/// A change between the layout's groups.
struct GroupChange {
  /// The keycode of the key that caused it; 0 for none.
  unsigned keycode = 0;
  /// The server time of that key's event, in milliseconds.
  Time time = 0;
};

/// Maps X keycodes to keys, by the key names in the display's keyboard description, and finds the meaning
/// of modifier keys in the current group. Follows changes of the description. Used by the thread that has
/// the connection.
class KeyMap {
 public:
  /// Reads the keyboard description and selects events for changes.
  explicit KeyMap(Display* display);

  /// Handles an event of the connection; true when it changed the meaning of keys.
  bool notice(const XEvent& event);

  /// The change of group that an event reports; none for any other event.
  [[nodiscard]] std::optional<GroupChange> groupChange(const XEvent& event) const;

  /// The meaning of a keycode if the key is pressed now.
  [[nodiscard]] const KeyMeaning& meaning(unsigned keycode) const {
    return meanings_[group_][keycode & 0xFF];
  }

  /// Its virtual key code; `key_code::none` for none.
  [[nodiscard]] std::uint16_t keyCode(unsigned keycode) const { return meaning(keycode).keyCode; }

  /// The keycode of a key; none when the keyboard has no such key.
  [[nodiscard]] std::optional<KeyCode> keycode(std::uint16_t keyCode) const;

  /// The keycodes of all keys that are Option in some group.
  [[nodiscard]] const std::vector<KeyCode>& optionKeycodes() const { return optionKeycodes_; }

  /// The core modifier bits for event flags, by the modifiers that the keys of this layout make.
  [[nodiscard]] unsigned modifierBits(std::uint64_t flags) const;

  /// Whether Sticky Keys are on.
  [[nodiscard]] bool stickyKeys() const { return stickyKeys_; }

 private:
  static constexpr std::size_t groups = 4;

  void skipMapEvents();
  void read();

  Display* display_;
  int xkbEvent_ = 0;
  std::size_t group_ = 0;
  bool stickyKeys_ = false;
  std::array<std::array<KeyMeaning, 256>, groups> meanings_{};
  std::array<std::array<KeyCode, 128>, groups> keycodes_{};  // the inverse; 0 for none
  std::vector<KeyCode> optionKeycodes_;
  std::array<std::uint8_t, 256> modifiers_{};
};

}  // namespace keyvora::x11
