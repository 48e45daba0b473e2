#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace keyvora::platform {

/// Time spans between moments of the monotonic clock, in seconds.
using Seconds = std::chrono::duration<double>;

/// A timer on the main loop. Main thread. Destroying it invalidates it; it may also be kept after that.
class Timer {
 public:
  virtual ~Timer() = default;

  /// Stops the timer. May be called more than once, also from the timer's own block.
  virtual void invalidate() = 0;
};

/// When a main-loop timer may fire.
enum class TimerMode {
  /// Not while a menu of this program is open: the timer then waits until the menu has closed.
  defaultMode,
  /// Always.
  commonModes,
};

/// The main thread's loop. Blocks run on the main thread and must not throw.
class MainLoop {
 public:
  virtual ~MainLoop() = default;

  /// Whether the caller is on the main thread. Any thread.
  [[nodiscard]] virtual bool isMainThread() const = 0;

  /// Runs `block` after `interval`, once or repeatedly at that interval; an interval of zero or less means
  /// the next pass of the loop. Main thread.
  virtual std::unique_ptr<Timer> schedule(Seconds interval, bool repeats, TimerMode mode,
                                          std::function<void()> block) = 0;

  /// Runs `block` once on the main thread after `delay`, whatever the loop is doing then. Any thread.
  virtual void after(Seconds delay, std::function<void()> block) = 0;
};

}  // namespace keyvora::platform
