#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/applications.h"
#include "platform/keyboard_layout.h"

/// Keyboard events in the terms of macOS (CGEventTypes.h), on every host: virtual key codes, event types
/// and flag masks. A host of another system translates its events to these.
namespace keyvora::platform {

/// Event types, as `CGEventType`. Plain numbers, not an enumeration, because a tap must accept any 32-bit
/// value.
namespace event_type {
inline constexpr std::uint32_t keyDown = 10;
inline constexpr std::uint32_t keyUp = 11;
inline constexpr std::uint32_t flagsChanged = 12;
inline constexpr std::uint32_t tapDisabledByTimeout = 0xFFFFFFFE;
inline constexpr std::uint32_t tapDisabledByUserInput = 0xFFFFFFFF;
}  // namespace event_type

/// Modifier bits of an event's flags, as `CGEventFlags`.
namespace event_flag {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
}  // namespace event_flag

/// One keyboard event as a tap sees it.
struct KeyEvent {
  std::uint32_t type = event_type::keyDown;
  /// Virtual key code: the physical key, whatever the keyboard layout.
  std::uint16_t keyCode = 0;
  /// Modifier mask at the time of the event.
  std::uint64_t flags = 0;
  /// The user data of the source that made the event (field 42); 0 for events of hardware.
  std::int64_t userData = 0;

  friend bool operator==(const KeyEvent&, const KeyEvent&) = default;
};

/// A tap's decision about an event.
enum class Verdict { pass, swallow };

/// Decides one event. Called on the main thread; must be quick and must not throw.
using TapHandler = std::function<Verdict(const KeyEvent&)>;

/// An event tap. Main thread only. Destroying it removes the tap.
class EventTap {
 public:
  virtual ~EventTap() = default;

  /// Enables the tap, at first and after the system has disabled it. Reports no failure.
  virtual void enable() = 0;
};

/// Where synthetic events come from. Safe from any thread once its user data is set.
class EventSource {
 public:
  virtual ~EventSource() = default;

  /// Every event made from this source from now on carries `userData`.
  virtual void setUserData(std::int64_t userData) = 0;
};

/// A synthetic keyboard event that was made and not posted yet. Used by one thread at a time.
class SyntheticEvent {
 public:
  virtual ~SyntheticEvent() = default;

  virtual void setType(std::uint32_t type) = 0;
  virtual void setFlags(std::uint64_t flags) = 0;

  /// Delivers the event to one process.
  virtual void postTo(ProcessIdentifier process) = 0;

  /// Injects the event at the hardware level, where every tap sees it, including this program's.
  virtual void postToHardware() = 0;
};

/// The keyboard of the login session.
class Keyboard {
 public:
  virtual ~Keyboard() = default;

  /// Creates a tap whose handler is called for every event whose type's bit is set in `eventMask`, and
  /// which may swallow it. The tap-disabled types are delivered whatever the mask. The tap is not enabled
  /// yet. Null when the system refuses (no permission, or another instance has the keyboard). Main thread;
  /// `handler` is called there too.
  virtual std::unique_ptr<EventTap> createTap(std::uint64_t eventMask, TapHandler handler) = 0;

  /// A private event source, or null when none can be made. Any thread.
  virtual std::unique_ptr<EventSource> createSource() = 0;

  /// A key-down or key-up of one key without flags; null when it cannot be made. A null `source` makes an
  /// event whose user data is 0. Any thread.
  virtual std::unique_ptr<SyntheticEvent> createEvent(const EventSource* source, std::uint16_t keyCode,
                                                      bool down) = 0;

  /// Calls `report`, on the main thread, with faults of the tap that belong in the log, a sentence each. A
  /// host whose tap has no such faults never calls it. Main thread.
  virtual void onFault(const std::function<void(const std::string& sentence)>& /*report*/) {}

  /// The keyboard layout that the system's own settings call by this name; none when there is no such
  /// layout, or the host cannot look layouts up. May read files. Main thread.
  virtual std::optional<KeyboardLayout> layout(const std::string& /*name*/) { return std::nullopt; }

  /// Names of common layouts, as examples; empty when the host cannot look layouts up.
  virtual std::vector<std::string> commonLayouts() { return {}; }
};

}  // namespace keyvora::platform
