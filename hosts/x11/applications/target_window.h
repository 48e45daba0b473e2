#pragma once

#include <atomic>
#include <optional>

namespace keyvora::x11 {

/// The window that the last swallowed key was meant for. Actions go to it, even if another window is in
/// front by then. Windows are X window numbers, 0 for none. Any thread.
class TargetWindow {
 public:
  TargetWindow() = default;
  TargetWindow(const TargetWindow&) = delete;
  TargetWindow& operator=(const TargetWindow&) = delete;

  /// The window that the calling thread is bound to, else the latest; 0 before the first.
  [[nodiscard]] unsigned long get() const { return bound().value_or(window_); }

  void set(unsigned long window) { window_ = window; }

  /// While it exists, the calling thread is bound to a window, so that long work goes to the window it was
  /// begun for.
  class Binding {
   public:
    explicit Binding(unsigned long window) { bound() = window; }
    ~Binding() { bound().reset(); }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;
  };

 private:
  static std::optional<unsigned long>& bound() {
    thread_local std::optional<unsigned long> window;
    return window;
  }

  std::atomic<unsigned long> window_ = 0;
};

}  // namespace keyvora::x11
