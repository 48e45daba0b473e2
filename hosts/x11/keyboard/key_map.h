#pragma once

#include <X11/Xlib.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "hosts/x11/keyboard/key_meaning.h"

namespace keyvora::x11 {

/// A change of the layout among those that the keyboard has, its groups.
struct GroupChange {
  /// The display's number for the key that made it; 0 for none.
  unsigned keycode = 0;
  /// The server's, in milliseconds: that of the key's event.
  Time time = 0;
};

/// The display's own numbers for keys, by the names that its keyboard description gives them, and what
/// modifier keys do in the current group. Follows changes. Used by the thread that has the
/// connection.
class KeyMap {
 public:
  /// Reads the keyboard description and asks to be told of changes.
  explicit KeyMap(Display* display);

  /// Looks at an event of the connection; true when it changed what keys mean.
  bool notice(const XEvent& event);

  /// The change of group that an event tells of; none for any other event.
  [[nodiscard]] std::optional<GroupChange> groupChange(const XEvent& event) const;

  /// What the key that the display calls `keycode` means if it is pressed now.
  [[nodiscard]] const KeyMeaning& meaning(unsigned keycode) const {
    return meanings_[group_][keycode & 0xFF];
  }

  /// Its virtual key code; `key_code::none` for none.
  [[nodiscard]] std::uint16_t keyCode(unsigned keycode) const { return meaning(keycode).keyCode; }

  /// The display's number for a key; none when the keyboard has no such key.
  [[nodiscard]] std::optional<KeyCode> keycode(std::uint16_t keyCode) const;

  /// The display's numbers of all keys that are Option in any group.
  [[nodiscard]] const std::vector<KeyCode>& optionKeycodes() const { return optionKeycodes_; }

  /// The core modifier bits for event flags, by what the keys of those modifiers do in this layout.
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
  std::array<std::array<KeyCode, 128>, groups> keycodes_{};  // the way back; 0 for none
  std::vector<KeyCode> optionKeycodes_;
  std::array<std::uint8_t, 256> modifiers_{};
};

}  // namespace keyvora::x11
