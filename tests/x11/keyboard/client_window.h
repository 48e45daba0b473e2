#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/applications.h"
#include "platform/key_code.h"

namespace keyvora::x11 {

/// F19: a key that says to a window that all typed before has arrived. It is counted and not recorded.
inline constexpr std::uint16_t sentinelKey = platform::key_code::f19;

/// A key event as a window got it.
struct ReceivedKey {
  std::uint16_t keyCode = 0;
  bool down = false;
  /// Came by XSendEvent.
  bool wasSent = false;
  /// Core modifier bits and keyboard group.
  unsigned state = 0;
  /// The character that the layout makes of it, as an X key symbol.
  unsigned long symbol = 0;
  std::chrono::steady_clock::time_point at;
};

/// A window of some application, which records the keys that it gets on a thread and connection of its own.
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

  /// What arrived so far. Any thread.
  [[nodiscard]] std::vector<ReceivedKey> received() const;

  /// How many sentinel keys were released so far.
  [[nodiscard]] int sentinels() const;

  /// The key codes that went down so far, in order, without repetitions being told apart.
  [[nodiscard]] std::vector<std::uint16_t> pressed() const;

  /// Waits until the window is the active one and has the keyboard; false when that does not come about.
  bool awaitFocus() const;

  /// How many windows the display shows, whoever's they are.
  [[nodiscard]] std::size_t windowsOnScreen() const;

  /// Asks the window manager to make it the active one, as a pager does, and waits for that.
  bool activate();

  /// Takes the keyboard for itself, as an application does while a menu is open.
  bool grabKeyboard();
  void ungrabKeyboard();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace keyvora::x11
