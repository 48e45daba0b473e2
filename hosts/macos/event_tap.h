#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include <memory>
#include <optional>

#include "hosts/macos/cf_ref.h"
#include "hosts/macos/session_watch.h"
#include "platform/keyboard.h"

namespace keyvora::macos {

/// The event in the core's terms. A notice that the tap was disabled comes without an event and has only a
/// type. Any thread.
platform::KeyEvent keyEventOf(CGEventType type, CGEventRef event);

/// The Mach port of a tap, with its source on the main run loop. Main thread.
class TapPort {
 public:
  /// An active session-wide tap; null when the system refuses it.
  static std::unique_ptr<TapPort> create(std::uint64_t eventMask, CGEventTapCallBack callback,
                                         void* userInfo);
  /// After this nothing calls back with `userInfo`.
  ~TapPort();
  TapPort(const TapPort&) = delete;
  TapPort& operator=(const TapPort&) = delete;

  /// False once the system has invalidated the tap: it cannot be enabled any more.
  [[nodiscard]] bool isAlive() const;
  [[nodiscard]] bool isEnabled() const;
  void enable();

 private:
  explicit TapPort(CFRef<CFMachPortRef> port) : port_(std::move(port)) {}

  CFRef<CFMachPortRef> port_;
  CFRef<CFRunLoopSourceRef> source_;
};

/// An active session-wide event tap on the main run loop. Main thread.
class EventTap final : public platform::EventTap {
 public:
  /// Null when the system refuses the tap.
  static std::unique_ptr<EventTap> create(std::uint64_t eventMask, platform::TapHandler handler);
  ~EventTap() override;
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;

  /// Replaces a port that the system has invalidated. While the system refuses a new one, the tap stays
  /// off.
  void enable() override;

 private:
  EventTap(std::uint64_t eventMask, platform::TapHandler handler)
      : eventMask_(eventMask), handler_(std::move(handler)) {}
  static CGEventRef callback(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);
  bool makePort();
  void reportIfDisabled() const;

  std::uint64_t eventMask_;
  platform::TapHandler handler_;
  std::unique_ptr<TapPort> port_;
  std::optional<SessionWatch> sessionWatch_;
  /// Prevents App Nap, which would lower the process's priority and delay its timers while all keys of the
  /// session wait for this tap.
  id<NSObject> activity_;
};

}  // namespace keyvora::macos
