#pragma once

#include <X11/Xlib.h>

#include <array>
#include <optional>
#include <vector>

namespace keyvora::x11 {

class KeyMap;

/// The passive grabs on the target's windows. A grabbed key press freezes the keyboard and is delivered to
/// the tap only; `replay` sends it on to its window, `swallow` drops it, and both thaw the keyboard. Used
/// by the thread that has the connection.
class KeyGrabs {
 public:
  /// Which keys are grabbed.
  enum class Extent { none, option, everyKey };

  KeyGrabs(Display* display, int masterKeyboard) : display_(display), master_(masterKeyboard) {}

  /// Makes the set of grabs exactly these keys on these windows. False when another client has grabbed some
  /// of them. Existing grabs that stay are not released in between. A change of extent does release them,
  /// so call it with the keyboard frozen if no key may be missed.
  bool apply(Extent extent, const std::vector<Window>& windows, const KeyMap& keys);

  [[nodiscard]] Extent extent() const { return extent_; }
  [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }

  /// Whether presses of this keycode are grabbed.
  [[nodiscard]] bool cover(unsigned keycode) const;

  /// Ends the automatic repetition of a held key. If the key's release was already queued in the server
  /// when it processed the press, the server would go on repeating it, and not stop after the queue is
  /// released.
  void stopRepeating(unsigned keycode);

  void replay(Time time);
  void swallow(Time time);

 private:
  bool grab(Window window) const;
  bool grab(Window window, int keycode) const;
  void release(Window window) const;

  Display* display_;
  int master_;
  Extent extent_ = Extent::none;
  std::vector<KeyCode> optionKeycodes_;
  std::vector<Window> windows_;
};

}  // namespace keyvora::x11
