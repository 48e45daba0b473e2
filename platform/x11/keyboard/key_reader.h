#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <bitset>
#include <cstdint>
#include <optional>

#include "platform/keyboard.h"
#include "platform/x11/keyboard/key_devices.h"
#include "platform/x11/keyboard/modifier_state.h"
#include "platform/x11/keyboard/own_events.h"

namespace keyvora::x11 {

class KeyMap;

/// A key event, and what the server holds back for it.
struct ReadKey {
  platform::KeyEvent event;
  /// When the grab began that holds the keyboard until `KeyGrabs` lets it go; none for an event that is on
  /// its way to its window already.
  std::optional<Time> heldSince = std::nullopt;
  /// The display's number for the key.
  unsigned keycode = 0;
  /// Made by the server because the key stays down.
  bool repeated = false;
};

/// What a reader needs to know, and whom it tells.
class KeyListener {
 public:
  virtual ~KeyListener() = default;

  /// Whether a grab is in place that can catch this key.
  [[nodiscard]] virtual bool mayBeHeld(std::uint16_t keyCode) const = 0;

  virtual void keyRead(const ReadKey& key) = 0;
};

/// Makes key events of what the server reports about the keyboard. Every press and release shows as a raw
/// event of the master keyboard, in the order in which windows see them. A press that a grab holds back is
/// followed at once by an event of the grab; a repeated press has only that. A release without a press is
/// none.
///
/// Events that went their way without a grab (typed elsewhere, or while the application has a grab of its
/// own, as it does while a menu is open) bear the key code `unknownKey`: what could not be held back must
/// neither count as a letter nor as an Option tap.
class KeyReader {
 public:
  /// Asks the server for the raw events. The map and the listener must outlive the reader.
  KeyReader(Display* display, KeyDevices devices, const KeyMap& keys, KeyListener& listener);

  /// Asks the server which keys are down, and forgets what was known of them.
  void resynchronise();

  /// Looks at an XInput event whose data was fetched.
  void notice(const XGenericEventCookie& cookie);

  /// Whether a press was read that a grab may be holding: the server says so next, or never.
  [[nodiscard]] bool isUndecided() const { return undecided_.has_value(); }

  /// All that the server had to say is read: no grab holds the press.
  void decide();

  /// Where injected events are announced.
  OwnEvents& ownEvents() { return own_; }

 private:
  struct Press {
    unsigned keycode = 0;
    platform::KeyEvent event;
  };

  void pressed(const XIRawEvent& raw);
  void released(const XIRawEvent& raw);
  void held(const XIDeviceEvent& press);
  OwnMark markOf(const XIRawEvent& raw);
  platform::KeyEvent changed(unsigned keycode, bool down, OwnMark mark);
  [[nodiscard]] platform::KeyEvent event(unsigned keycode, bool down) const;

  Display* display_;
  KeyDevices devices_;
  const KeyMap& keys_;
  KeyListener& listener_;
  OwnEvents own_;
  ModifierState modifiers_;
  std::bitset<256> down_;
  std::bitset<256> wasHeld_;
  std::optional<Press> undecided_;
};

}  // namespace keyvora::x11
