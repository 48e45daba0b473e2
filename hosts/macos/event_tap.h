#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include <memory>
#include <optional>

#include "hosts/macos/cf_ref.h"
#include "hosts/macos/session_watch.h"
#include "platform/keyboard.h"

namespace keyvora::macos {

/// An active session-wide event tap on the main run loop. Main thread.
class EventTap final : public platform::EventTap {
 public:
  /// Null when the system refuses the tap.
  static std::unique_ptr<EventTap> create(std::uint64_t eventMask, platform::TapHandler handler);
  ~EventTap() override;
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;

  void enable() override;

 private:
  explicit EventTap(platform::TapHandler handler) : handler_(std::move(handler)) {}
  static CGEventRef callback(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);
  platform::Verdict decide(CGEventType type, CGEventRef event) const;
  void reportIfDisabled() const;

  platform::TapHandler handler_;
  CFRef<CFMachPortRef> port_;
  CFRef<CFRunLoopSourceRef> source_;
  std::optional<SessionWatch> sessionWatch_;
  /// Keeps the process from App Nap, which lowers its priority and puts its timers off: the whole session's
  /// keys wait for this tap.
  id<NSObject> activity_;
};

}  // namespace keyvora::macos
