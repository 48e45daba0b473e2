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
#include "hosts/x11/server_clock.h"
#include "platform/applications.h"

namespace keyvora::x11 {

class CurrentTap;
class KeyboardIsFree;

/// The press or release of a key that is to be posted.
struct KeyStroke {
  std::uint16_t keyCode = 0;
  bool down = true;
  /// Whether the key is posted as a change of modifiers, which `flags` already include.
  bool isFlagsChange = false;
  std::uint64_t flags = 0;
  std::int64_t userData = 0;
};

/// Posts key events, on a connection of its own. Any thread. A key that the keyboard lacks is ignored, and
/// so is a process without a window. Queries the windows when it needs one, because nothing reads this
/// connection's events in between.
class Poster {
 public:
  /// Null without a display. Keys for a process go to the window that `target` names.
  static std::unique_ptr<Poster> open(const std::string& displayName, const TargetWindow& target);

  /// Whether the keyboard has the key.
  bool hasKey(std::uint16_t keyCode);

  /// Sends the stroke to the target's window or to the dialog in front of it, which may have opened since
  /// the last stroke. Ignored when that window was closed or belongs to another process. Before the first
  /// target window, any window of the process is used. The window need not have the focus, and no tap sees
  /// the event.
  void sendTo(platform::ProcessIdentifier process, const KeyStroke& stroke, KeyboardIsFree);

  /// Injects the stroke with XTEST, through the tap if there is one. For a key press with flags, the
  /// modifier keys are held meanwhile, because XTEST has no other way to set flags.
  void inject(const KeyStroke& stroke, CurrentTap& tap, KeyboardIsFree);

 private:
  Poster(std::unique_ptr<Connection> connection, const TargetWindow& target);

  void catchUp();
  void readEvents();
  [[nodiscard]] Window windowOf(platform::ProcessIdentifier process) const;
  [[nodiscard]] unsigned stateBefore(const KeyStroke& stroke) const;
  void injectKey(std::uint16_t keyCode, bool down, const KeyStroke& stroke, CurrentTap& tap);

  std::mutex mutex_;
  std::unique_ptr<Connection> connection_;
  const TargetWindow& target_;
  KeyMap keys_;
  ServerClock clock_;
};

}  // namespace keyvora::x11
