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

/// What became of a key.
enum class Fate { passed, swallowed, timedOut };

/// One event on its way to a tap; a notice has none.
struct Delivery {
  CGEventType type = kCGEventNull;
  KeyEvent* event = nullptr;
  /// Its time ran out, and it holds a reference to the event.
  bool abandoned = false;
  std::optional<Fate> fate;
};

/// The port of an event tap. Its run-loop source waits on the file descriptor.
class Tap final : public CFObject {
 public:
  static constexpr auto name = "mach port";

  Tap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo);

  [[nodiscard]] CFTypeID type() const override { return type_id::other; }
  [[nodiscard]] CFMachPortRef reference() { return reinterpret_cast<CFMachPortRef>(this); }
  [[nodiscard]] int descriptor() const { return descriptor_; }
  /// Calls back for the next delivery, on the main thread.
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

/// Passes keys to the tap, one after another, and waits for each verdict.
class WindowServer {
 public:
  static WindowServer& shared();

  /// The process may make taps from now on, or may not.
  void setTrusted(bool trusted) { trusted_ = trusted; }
  [[nodiscard]] bool isTrusted() const { return trusted_; }
  /// How long a verdict may take.
  void setLimit(std::chrono::milliseconds limit) { limit_ = limit; }

  Tap* createTap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo);
  /// The last tap that was made, while it lives.
  Tap* tap();
  /// Switches the tap off as the system does, with its notice or without.
  void disableTap(CGEventType notice);
  /// The tap's port dies, as when the process that serves it does.
  void killTap();

  /// Presses or releases a key and waits for its fate. Not on the main thread.
  Fate press(CGKeyCode key, bool down, CGEventFlags flags);
  /// An event that a program posted: it goes its way by itself.
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
