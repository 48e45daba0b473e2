#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "tests/x11/private_display.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {

/// A desktop session for one test program: a display with a window manager, a message bus that can start an
/// accessibility bus, and a home directory. Sets the program's own environment to it.
class PrivateSession {
 public:
  /// One session for all tests of a program, because a process joins only one accessibility bus.
  static PrivateSession& shared() {
    static PrivateSession session;
    return session;
  }

  /// Throws, and so fails the test, when a part of it is missing or does not start.
  PrivateSession();
  ~PrivateSession();
  PrivateSession(const PrivateSession&) = delete;
  PrivateSession& operator=(const PrivateSession&) = delete;

  [[nodiscard]] const PrivateDisplay& display() const { return display_; }
  [[nodiscard]] const std::filesystem::path& home() const { return home_.path(); }

  /// Starts trayer, a system tray, and waits until it is ready; `options` are its arguments.
  void startTray(const std::vector<std::string>& options = {});
  /// Kills it.
  void endTray();

  void endDisplay() { display_.endServer(); }

  /// Ends the message bus and with it the accessibility bus.
  void endBuses();

 private:
  void startBus();

  ScratchDirectory home_;
  PrivateDisplay display_;
  Child bus_;
  Child tray_;
};

}  // namespace keyvora::x11
