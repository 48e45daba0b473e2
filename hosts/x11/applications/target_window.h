#pragma once

#include <atomic>
#include <optional>

namespace keyvora::x11 {

/// The window that the last swallowed key was meant for: what an action is done to, whatever is in front by
/// the time it is done. Windows are X's numbers for them, 0 for none. Any thread.
class TargetWindow {
 public:
  TargetWindow() = default;
  TargetWindow(const TargetWindow&) = delete;
  TargetWindow& operator=(const TargetWindow&) = delete;

  /// That of the work that the calling thread is bound to, else the latest; 0 before the first.
  [[nodiscard]] unsigned long get() const { return bound().value_or(window_); }

  void set(unsigned long window) { window_ = window; }

  /// Binds the calling thread to a window for as long as it lives: work that takes time stays with the window
  /// that it was begun for.
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
