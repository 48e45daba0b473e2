#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>

#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/keyboard/modifier_state.h"
#include "hosts/x11/tap/key_devices.h"
#include "hosts/x11/tap/own_events.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// A key event, and how the server holds it.
struct ReadKey {
  platform::KeyEvent event{};
  /// When the grab that freezes the keyboard began; none for an event that goes to its window anyway.
  std::optional<Time> heldSince = std::nullopt;
  /// The window of the grab that freezes the keyboard.
  Window window = None;
  /// The X keycode.
  unsigned keycode = 0;
  /// Made by the server's automatic repetition.
  bool repeated = false;
};

/// The reader's listener, which also answers its question about grabs.
class KeyListener {
 public:
  virtual ~KeyListener() = default;

  /// Whether a grab that can catch this keycode is active.
  [[nodiscard]] virtual bool mayBeHeld(unsigned keycode) const = 0;

  virtual void keyRead(const ReadKey& key) = 0;
};

/// Converts the server's keyboard events to key events.
///
/// The reader has two states. At rest it receives only key presses caught by a grab, so ordinary typing
/// does not reach this process. The first such press makes it attentive. An attentive reader receives every
/// press and release as a raw event of the master keyboard, in the order in which windows get them. For a
/// press caught by a grab, the grab's own event follows its raw event. A repeated press has no raw event,
/// only the grab's. A release without an earlier press is ignored.
///
/// Events that no grab caught have the key code `key_code::none`: keys typed in another window, or while
/// the application has a grab of its own, for example for an open menu. They count neither as letters nor
/// as Option taps, since they could not have been swallowed.
class KeyReader {
 public:
  /// Starts at rest. The map and the listener must outlive the reader.
  KeyReader(Display* display, KeyDevices devices, const KeyMap& keys, KeyListener& listener)
      : display_(display), devices_(devices), keys_(keys), listener_(listener) {}

  /// Selects raw events, unless they are selected already.
  void attend();

  /// Deselects raw events, unless a modifier key is down or an injected event is still expected.
  void rest();

  /// Reads from the server which keys are down, and drops the earlier state.
  void resynchronise();

  /// Handles an XInput event whose data was fetched.
  void notice(const XGenericEventCookie& cookie);

  /// The keyboard changed to another group of its layout.
  void groupChanged(const GroupChange& change);

  /// Whether the last press may still turn out to be caught by a grab. The server reports that next, or not
  /// at all.
  [[nodiscard]] bool isUndecided() const { return undecided_.has_value(); }

  /// All events of the server were read: no grab caught the press.
  void decide();

  /// Injects a key with XTEST and recognises its event, which gets this mark. Makes the reader attentive.
  void inject(KeyCode key, bool down, OwnMark mark);

 private:
  struct Press {
    unsigned keycode = 0;
    platform::KeyEvent event;
  };

  enum class Change { press, repetition, release };

  void select(bool raw);
  [[nodiscard]] bool isModifierDown() const;
  [[nodiscard]] bool isOptionDown() const;
  void optionPressed(unsigned keycode, Time time);
  void tellThatOptionWasNotAlone();
  void pressed(const XIRawEvent& raw);
  void released(const XIRawEvent& raw);
  void held(const XIDeviceEvent& press);
  OwnMark markOf(const XIRawEvent& raw);
  platform::KeyEvent changed(unsigned keycode, Change change, OwnMark mark);
  [[nodiscard]] platform::KeyEvent event(unsigned keycode, bool down) const;

  Display* display_;
  KeyDevices devices_;
  const KeyMap& keys_;
  KeyListener& listener_;
  bool attentive_ = false;
  OwnEvents own_;
  ModifierState modifiers_;
  std::bitset<256> down_;
  /// The meaning of each key that is down, from when it went down.
  std::array<KeyMeaning, 256> meanings_{};
  GroupChange lastGroupChange_;
  /// Something other than a key happened while Option was down. The handler must learn that before Option
  /// goes up.
  bool optionWasNotAlone_ = false;
  std::bitset<256> wasHeld_;
  std::optional<Press> undecided_;
};

}  // namespace keyvora::x11
