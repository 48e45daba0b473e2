#pragma once

#include <X11/Xlib.h>

#include <array>
#include <optional>
#include <vector>

namespace keyvora::x11 {

class KeyMap;

/// The passive grabs on the target's windows. A grabbed key press freezes the keyboard and comes to the tap
/// alone; `replay` sends it on to its window and `swallow` drops it, and both let the keyboard go. Used by
/// the thread that has the connection.
class KeyGrabs {
 public:
  /// Which keys are grabbed.
  enum class Extent { none, option, everyKey };

  KeyGrabs(Display* display, int masterKeyboard) : display_(display), master_(masterKeyboard) {}

  /// Grabs these keys, and no others, on these windows, and on no others. False when another client has
  /// grabbed some of them. What stays grabbed is not let go in between; on a change of extent it is, so that
  /// wants a frozen keyboard if no key may slip through.
  bool apply(Extent extent, const std::vector<Window>& windows, const KeyMap& keys);

  [[nodiscard]] Extent extent() const { return extent_; }
  [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }

  /// Whether presses of this key, by the display's number, are grabbed.
  [[nodiscard]] bool cover(unsigned keycode) const;

  /// Ends the automatic repetition of a key that stays held back. The server goes on repeating a key whose
  /// release it had queued already when it processed the press, and would never stop once the queue is let
  /// go.
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
