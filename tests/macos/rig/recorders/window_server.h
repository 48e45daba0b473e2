#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "tests/macos/rig/recorders/cf_object.h"
#include "tests/macos/rig/recorders/key_event.h"

namespace keyvora::rig {

/// What happened to a key.
enum class Fate { passed, swallowed, timedOut };

/// One event for a tap; a notice carries no event.
struct Delivery {
  CGEventType type = kCGEventNull;
  KeyEvent* event = nullptr;
  /// Its time is over, but it still holds a reference to the event.
  bool abandoned = false;
  std::optional<Fate> fate;
};

/// The port of an event tap. Its run-loop source waits for the file descriptor.
class Tap final : public CFObject {
 public:
  static constexpr auto name = "mach port";

  Tap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo);

  [[nodiscard]] CFTypeID type() const override { return type_id::other; }
  [[nodiscard]] CFMachPortRef reference() { return reinterpret_cast<CFMachPortRef>(this); }
  [[nodiscard]] int descriptor() const { return descriptor_; }
  /// Calls the callback for the next delivery, on the main thread.
  void deliver();

  std::atomic<bool> enabled = true;
  std::atomic<bool> valid = true;

 private:
  friend class WindowServer;
  Fate call(const Delivery& delivery);
  bool isAbandoned(const Delivery& delivery);
  void ended() override { valid = false; }

  const CGEventMask mask_;
  const bool active_;
  const CGEventTapCallBack callback_;
  void* const userInfo_;
  const int descriptor_;
  std::mutex mutex_;
  std::condition_variable decided_;
  std::deque<std::shared_ptr<Delivery>> waiting_;
};

/// Delivers keys to the tap, one after another, and waits for each verdict.
class WindowServer {
 public:
  static WindowServer& shared();

  /// Whether the process may create taps from now on.
  void setTrusted(bool trusted) { trusted_ = trusted; }
  [[nodiscard]] bool isTrusted() const { return trusted_; }
  /// The time limit for a verdict.
  void setLimit(std::chrono::milliseconds limit) { limit_ = limit; }

  Tap* createTap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo);
  /// The last created tap, while it exists.
  Tap* tap();
  /// Disables the tap as the system does, with or without a notice.
  void disableTap(CGEventType notice);
  /// Invalidates the tap's port, as when the serving process dies.
  void killTap();

  /// Presses or releases a key and waits for the result. Not to be called on the main thread.
  Fate press(CGKeyCode key, bool down, CGEventFlags flags);
  /// An event that a program posted: delivered without waiting.
  void inject(const KeyEvent& event);

 private:
  WindowServer();
  Fate pass(KeyEvent& event);
  void notify(Tap& tap, CGEventType type);

  std::atomic<bool> trusted_ = true;
  std::atomic<std::chrono::milliseconds> limit_ = std::chrono::milliseconds(60000);
  std::mutex passing_;
  std::mutex mutex_;
  Tap* tap_ = nullptr;
};

}  // namespace keyvora::rig
