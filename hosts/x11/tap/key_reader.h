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

/// A key event, and what the server holds back for it.
struct ReadKey {
  platform::KeyEvent event{};
  /// When the grab began that holds the keyboard until `KeyGrabs` lets it go; none for an event that is on
  /// its way to its window already.
  std::optional<Time> heldSince = std::nullopt;
  /// The window whose grab it is that holds the keyboard.
  Window window = None;
  /// The display's number for the key.
  unsigned keycode = 0;
  /// Made by the server because the key stays down.
  bool repeated = false;
};

/// What a reader needs to know, and whom it tells.
class KeyListener {
 public:
  virtual ~KeyListener() = default;

  /// Whether a grab is in place that can catch this key, by the display's number.
  [[nodiscard]] virtual bool mayBeHeld(unsigned keycode) const = 0;

  virtual void keyRead(const ReadKey& key) = 0;
};

/// Makes key events of what the server reports about the keyboard.
///
/// The reader has two states. At rest it receives only the presses that a grab holds back; ordinary typing
/// does not reach this process at all. The first such press makes it attentive. An attentive reader receives
/// every press and release as a raw event of the master keyboard, in the order in which windows see them. A
/// press that a grab holds back is followed at once by the grab's own event. A repeated press has no raw
/// event, only the grab's. A release without a press before it is ignored.
///
/// Events that no grab held back have the key code `key_code::none`: keys typed in another window, or while
/// the application has a grab of its own, for example while its menu is open. Such an event counts neither as
/// a letter nor as an Option tap, since it could not have been swallowed.
class KeyReader {
 public:
  /// Rests. The map and the listener must outlive the reader.
  KeyReader(Display* display, KeyDevices devices, const KeyMap& keys, KeyListener& listener)
      : display_(display), devices_(devices), keys_(keys), listener_(listener) {}

  /// Asks the server for the raw events, unless that is done.
  void attend();

  /// Asks for no raw events any more, unless a modifier key is down or an injected event is still to come.
  void rest();

  /// Asks the server which keys are down, and forgets what was known of them.
  void resynchronise();

  /// Looks at an XInput event whose data was fetched.
  void notice(const XGenericEventCookie& cookie);

  /// The keyboard's layout was changed to another of its groups.
  void groupChanged(const GroupChange& change);

  /// Whether a press was read that a grab may be holding: the server says so next, or never.
  [[nodiscard]] bool isUndecided() const { return undecided_.has_value(); }

  /// All that the server had to say is read: no grab holds the press.
  void decide();

  /// Injects a key with XTEST and knows it again by this mark. Makes the reader attentive.
  void inject(KeyCode key, bool down, OwnMark mark);

 private:
  struct Press {
    unsigned keycode = 0;
    platform::KeyEvent event;
  };

  void select(bool raw);
  [[nodiscard]] bool isModifierDown() const;
  [[nodiscard]] bool isOptionDown() const;
  void optionPressed(unsigned keycode, Time time);
  void tellThatOptionWasNotAlone();
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
  bool attentive_ = false;
  OwnEvents own_;
  ModifierState modifiers_;
  std::bitset<256> down_;
  /// What the keys that are down meant when they went down.
  std::array<KeyMeaning, 256> meanings_{};
  GroupChange lastGroupChange_;
  /// Something besides keys happened while Option was down, which the handler has to learn before it is up.
  bool optionWasNotAlone_ = false;
  std::bitset<256> wasHeld_;
  std::optional<Press> undecided_;
};

}  // namespace keyvora::x11
