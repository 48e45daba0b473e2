#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace keyvora::x11 {

/// The time limit for a condition: enough for a machine with several busy processes per core.
inline constexpr std::chrono::seconds patience{60};

/// A program started by a test; the destructor ends it.
class Child {
 public:
  Child() = default;
  /// Starts it with these additions to the environment; throws when it cannot be started.
  Child(const std::vector<std::string>& command, const std::vector<std::string>& environment);
  ~Child() { kill(); }
  Child(Child&& other) noexcept;
  Child& operator=(Child&& other) noexcept;

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Kills it and waits for its end.
  void kill();

  /// Waits for its end and returns its wait status; -1 when it did not end in time.
  int wait();

 private:
  pid_t pid_ = -1;
};

/// An X server without a screen, with a window manager, for one test.
class PrivateDisplay {
 public:
  /// Throws, and so fails the test, when Xvfb or openbox is missing or does not start.
  PrivateDisplay();
  ~PrivateDisplay();
  PrivateDisplay(const PrivateDisplay&) = delete;
  PrivateDisplay& operator=(const PrivateDisplay&) = delete;

  /// A value for DISPLAY.
  [[nodiscard]] const std::string& name() const { return name_; }

  void startWindowManager();
  void endWindowManager() { windowManager_.kill(); }
  void endServer() { server_.kill(); }

  /// Loads a keyboard layout, with a variant if one is given.
  void setLayout(const std::string& layout, const std::string& variant = "") const;

 private:
  std::filesystem::path home_;
  Child server_;
  Child windowManager_;
  std::string name_;
};

/// Runs GLib's default main context until the condition is true, for at most `limit`; returns the
/// condition.
bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = patience);

}  // namespace keyvora::x11
