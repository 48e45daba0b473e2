#pragma once

#include <X11/Xlib.h>

#include <chrono>
#include <optional>

namespace keyvora::bench {

/// A window that keys are typed into, on its own connection. keyvora takes it for the target application.
class TargetWindow {
 public:
  /// Shows the window and waits until it has the keyboard focus.
  explicit TargetWindow(Display* display);
  ~TargetWindow();
  TargetWindow(const TargetWindow&) = delete;
  TargetWindow& operator=(const TargetWindow&) = delete;

  using Clock = std::chrono::steady_clock;

  /// When the press of this key arrived; none when it did not within `limit`. Other keys are ignored.
  std::optional<Clock::time_point> waitFor(KeyCode key, std::chrono::milliseconds limit);

 private:
  bool next(XEvent& event, Clock::time_point until);

  Display* display_;
  Window window_;
};

}  // namespace keyvora::bench
