#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"
#include "platform/applications.h"

namespace keyvora::x11 {

class CurrentTap;
class KeyboardIsFree;

/// A key going down or up, to be posted.
struct KeyStroke {
  std::uint16_t keyCode = 0;
  bool down = true;
  /// Whether the key is posted as a change of the modifiers, which `flags` then already show.
  bool isFlagsChange = false;
  std::uint64_t flags = 0;
  std::int64_t userData = 0;
};

/// Posts key events, on a connection of its own. Any thread. A key that the keyboard lacks, and a process
/// without a window, are passed over. Asks for the windows when it needs one: what it would be told of them
/// meanwhile, nobody would read.
class Poster {
 public:
  /// Null without a display. Keys to a process go where `target` says.
  static std::unique_ptr<Poster> open(const std::string& displayName, const TargetWindow& target);

  /// Whether the keyboard has the key.
  bool hasKey(std::uint16_t keyCode);

  /// Sends the stroke to the target's window or to the dialog in front of it: one may have opened since the
  /// last stroke. Passed over when that window is gone, or another process's. While there is no such window
  /// yet, any of the process serves. The window need not have the focus, and no tap sees the event.
  void sendTo(platform::ProcessIdentifier process, const KeyStroke& stroke, KeyboardIsFree);

  /// Injects the stroke with XTEST, by way of the tap if there is one. Flags of a key going down are modifier
  /// keys held meanwhile, since a keyboard has no other way of saying them.
  void inject(const KeyStroke& stroke, CurrentTap& tap, KeyboardIsFree);

 private:
  Poster(std::unique_ptr<Connection> connection, const TargetWindow& target);

  void catchUp();
  [[nodiscard]] Window windowOf(platform::ProcessIdentifier process) const;
  Time serverTime();
  [[nodiscard]] unsigned stateBefore(const KeyStroke& stroke) const;
  void injectKey(std::uint16_t keyCode, bool down, const KeyStroke& stroke, CurrentTap& tap);

  std::mutex mutex_;
  std::unique_ptr<Connection> connection_;
  const TargetWindow& target_;
  KeyMap keys_;
  Window clock_;
};

}  // namespace keyvora::x11
