#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/applications.h"
#include "platform/key_code.h"

namespace keyvora::x11 {

/// F19: a key that shows that everything typed before it has arrived. It is counted and not recorded.
inline constexpr std::uint16_t sentinelKey = platform::key_code::f19;

/// A key event as a window received it.
struct ReceivedKey {
  std::uint16_t keyCode = 0;
  bool down = false;
  /// Sent with XSendEvent.
  bool wasSent = false;
  /// Core modifier bits and keyboard group.
  unsigned state = 0;
  /// The character that the layout makes of it, as an X key symbol.
  unsigned long symbol = 0;
  std::chrono::steady_clock::time_point at;
};

/// A window of an application. Records its key events on a thread and connection of its own.
class ClientWindow {
 public:
  struct Options {
    std::string instanceName = "gnumeric";
    std::string className = "Gnumeric";
    platform::ProcessIdentifier process = 4711;
    /// The window that this one is a dialog of.
    unsigned long transientFor = 0;
    /// UTF-8; empty for none.
    std::string title = {};
  };

  /// Shows the window.
  ClientWindow(const std::string& displayName, const Options& options);
  ~ClientWindow();

  [[nodiscard]] unsigned long window() const;

  /// Changes its WM_CLASS.
  void setClass(const std::string& instanceName, const std::string& className);

  /// The key events received so far. Any thread.
  [[nodiscard]] std::vector<ReceivedKey> received() const;

  /// How many sentinel keys were released so far.
  [[nodiscard]] int sentinels() const;

  /// The key codes pressed so far, in order, including repetitions.
  [[nodiscard]] std::vector<std::uint16_t> pressed() const;

  /// Waits until the window is the active one and has the keyboard focus; false after a time limit.
  bool awaitFocus() const;

  /// The number of windows on the display, of all clients.
  [[nodiscard]] std::size_t windowsOnScreen() const;

  /// Requests from the window manager, as a pager does, that it becomes the active window, and waits for
  /// that.
  bool activate();

  /// Grabs the keyboard, as an application does while a menu is open.
  bool grabKeyboard();
  void ungrabKeyboard();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace keyvora::x11
