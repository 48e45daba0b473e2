#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string>

#include "tests/macos/rig/recorders/cf_object.h"

namespace keyvora::rig {

/// A CGEvent: only a copy of its values.
class KeyEvent final : public CFObject {
 public:
  static constexpr auto name = "event";

  KeyEvent() : CFObject(name) {}

  [[nodiscard]] CFTypeID type() const override { return type_id::other; }
  /// The event as a reference of its own type.
  [[nodiscard]] CGEventRef reference() { return reinterpret_cast<CGEventRef>(this); }
  /// "keyDown 4 flags 0x100 user 0x5e7a91c3".
  [[nodiscard]] std::string description() const;

  CGEventType eventType = kCGEventNull;
  CGKeyCode key = 0;
  CGEventFlags flags = 0;
  int64_t userData = 0;
};

/// A CGEventSource.
class KeyEventSource final : public CFObject {
 public:
  static constexpr auto name = "event source";

  explicit KeyEventSource(CGEventSourceStateID state) : CFObject(name), state(state) {}

  [[nodiscard]] CFTypeID type() const override { return type_id::other; }

  const CGEventSourceStateID state;
  int64_t userData = 0;
};

/// A key-down or key-up of the keyboard; for a modifier, a change of flags.
KeyEvent* makeKeyEvent(CGKeyCode key, bool down, CGEventFlags flags);

}  // namespace keyvora::rig
