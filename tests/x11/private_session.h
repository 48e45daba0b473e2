#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "tests/x11/private_display.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {

/// A desktop session for one test program: a display with a window manager, a message bus by which an
/// accessibility bus starts, and a home. The program's own environment is set to it.
class PrivateSession {
 public:
  /// One for all tests of a program: a process joins one accessibility bus in its life.
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

  /// Starts trayer, a system tray, and waits until it is one; `options` are its own.
  void startTray(const std::vector<std::string>& options = {});
  /// Ends it at once.
  void endTray();

  void endDisplay() { display_.endServer(); }

  /// Ends the message bus, and the accessibility bus with it.
  void endBuses();

 private:
  void startBus();

  ScratchDirectory home_;
  PrivateDisplay display_;
  Child bus_;
  Child tray_;
};

}  // namespace keyvora::x11
