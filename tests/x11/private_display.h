#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace keyvora::x11 {

/// How long a test waits for a condition before it fails: for a machine with several busy processes a core.
inline constexpr std::chrono::seconds patience{60};

/// A program that a test started; ended by the destructor.
class Child {
 public:
  Child() = default;
  /// Starts it with these additions to the environment; throws when it cannot be started.
  Child(const std::vector<std::string>& command, const std::vector<std::string>& environment);
  ~Child() { kill(); }
  Child(Child&& other) noexcept;
  Child& operator=(Child&& other) noexcept;

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Ends it at once and waits for that.
  void kill();

  /// Waits for its end and gives its wait status; -1 when it did not end in time.
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

  /// As in DISPLAY.
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

/// Runs GLib's default main context until the condition holds, `patience` at the most; whether it came to
/// hold.
bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = patience);

}  // namespace keyvora::x11
