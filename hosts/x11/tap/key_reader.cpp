#include "hosts/x11/tap/key_reader.h"

#include <X11/extensions/XTest.h>

#include <array>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/key_map.h"

namespace keyvora::x11 {
namespace {

RawKey rawKey(const XIRawEvent& raw) {
  return {.keycode = unsigned(raw.detail) & 0xFF, .down = raw.evtype == XI_RawKeyPress, .time = raw.time};
}

}  // namespace

void KeyReader::attend() {
  if (attentive_) return;
  attentive_ = true;
  select(true);
  resynchronise();
}

void KeyReader::rest() {
  // Not while a modifier is down: its release would be missed, and its flag would stay in all later events.
  if (!attentive_ || undecided_ || isModifierDown() || own_.areOutstanding()) return;
  attentive_ = false;
  select(false);
  own_.clear();
}

void KeyReader::select(bool raw) {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  if (raw) {
    XISetMask(bits.data(), XI_RawKeyPress);
    XISetMask(bits.data(), XI_RawKeyRelease);
    XISetMask(bits.data(), XI_RawButtonPress);
  }
  XIEventMask mask{.deviceid = XIAllDevices, .mask_len = int(bits.size()), .mask = bits.data()};
  XISelectEvents(display_, DefaultRootWindow(display_), &mask, 1);
}

bool KeyReader::isModifierDown() const {
  for (unsigned keycode = 0; keycode < down_.size(); ++keycode) {
    if (down_[keycode] && meanings_[keycode].isModifier) return true;
  }
  return false;
}

bool KeyReader::isOptionDown() const {
  for (unsigned keycode = 0; keycode < down_.size(); ++keycode) {
    if (down_[keycode] && key_code::isOption(meanings_[keycode].keyCode)) return true;
  }
  return false;
}

void KeyReader::resynchronise() {
  std::array<char, 32> keymap{};
  XQueryKeymap(display_, keymap.data());
  modifiers_.clear();
  wasHeld_.reset();
  undecided_.reset();
  for (unsigned keycode = 0; keycode < down_.size(); ++keycode) {
    const bool down = (static_cast<unsigned char>(keymap[keycode / 8]) >> keycode % 8 & 1U) != 0;
    down_[keycode] = down;
    meanings_[keycode] = keys_.meaning(keycode);
    if (down) modifiers_.press(keycode, meanings_[keycode].flag);
  }
}

void KeyReader::notice(const XGenericEventCookie& cookie) {
  if (cookie.evtype == XI_KeyPress) {
    held(*static_cast<const XIDeviceEvent*>(cookie.data));
    return;
  }
  if (cookie.evtype == XI_RawButtonPress) {
    if (isOptionDown()) optionWasNotAlone_ = true;
    return;
  }
  if (cookie.evtype != XI_RawKeyPress && cookie.evtype != XI_RawKeyRelease) return;
  if (!attentive_) return;  // sent before the events were deselected
  const auto& raw = *static_cast<const XIRawEvent*>(cookie.data);
  own_.reached(cookie.serial);
  if (raw.deviceid == devices_.xtest) own_.onDevice(cookie.serial, rawKey(raw));
  if (raw.deviceid != devices_.master) return;
  decide();
  if (cookie.evtype == XI_RawKeyPress) {
    pressed(raw);
  } else {
    released(raw);
  }
}

void KeyReader::groupChanged(const GroupChange& change) {
  lastGroupChange_ = change;
  if (isOptionDown()) optionWasNotAlone_ = true;
}

/// A key whose press changes the group may report that change before the press.
void KeyReader::optionPressed(unsigned keycode, Time time) {
  const bool changedGroup = lastGroupChange_.keycode == keycode && lastGroupChange_.time == time;
  if (changedGroup || keys_.stickyKeys()) optionWasNotAlone_ = true;
}

void KeyReader::tellThatOptionWasNotAlone() {
  const auto flags = modifiers_.flags() | platform::event_flag::option;
  listener_.keyRead({.event = {.keyCode = key_code::none, .flags = flags}});
}

void KeyReader::inject(KeyCode key, bool down, OwnMark mark) {
  attend();
  own_.expect(NextRequest(display_), mark);
  XTestFakeKeyEvent(display_, key, down ? True : False, CurrentTime);
}

void KeyReader::decide() {
  if (!undecided_) return;
  auto press = *undecided_;
  undecided_.reset();
  press.event.keyCode = key_code::none;
  listener_.keyRead({.event = press.event, .keycode = press.keycode});
}

void KeyReader::pressed(const XIRawEvent& raw) {
  const auto keycode = unsigned(raw.detail) & 0xFF;
  const auto event = changed(keycode, Change::press, markOf(raw));  // repetitions have no raw event
  wasHeld_[keycode] = false;
  if (key_code::isOption(event.keyCode)) optionPressed(keycode, raw.time);
  undecided_ = Press{keycode, event};
  if (!listener_.mayBeHeld(keycode)) decide();
}

void KeyReader::released(const XIRawEvent& raw) {
  const auto keycode = unsigned(raw.detail) & 0xFF;
  const auto mark = markOf(raw);
  if (!down_[keycode]) return;
  const bool endsOption = key_code::isOption(meanings_[keycode].keyCode);
  if (endsOption && std::exchange(optionWasNotAlone_, false)) tellThatOptionWasNotAlone();
  auto event = changed(keycode, Change::release, mark);
  if (!wasHeld_[keycode]) event.keyCode = key_code::none;
  listener_.keyRead({.event = event, .keycode = keycode});
}

void KeyReader::held(const XIDeviceEvent& press) {
  const auto keycode = unsigned(press.detail) & 0xFF;
  attend();
  ReadKey key{.heldSince = press.time,
              .window = press.event,
              .keycode = keycode,
              .repeated = (press.flags & XIKeyRepeat) != 0};
  if (undecided_ && undecided_->keycode == keycode) {
    key.event = undecided_->event;
    undecided_.reset();
  } else {
    key.event = changed(keycode, key.repeated ? Change::repetition : Change::press, OwnMark{});
    if (key_code::isOption(key.event.keyCode)) optionPressed(keycode, press.time);
  }
  wasHeld_[keycode] = true;
  listener_.keyRead(key);
}

OwnMark KeyReader::markOf(const XIRawEvent& raw) {
  return raw.sourceid == devices_.xtest ? own_.onMaster(rawKey(raw)) : OwnMark{};
}

platform::KeyEvent KeyReader::changed(unsigned keycode, Change change, OwnMark mark) {
  const bool down = change != Change::release;
  // The server may have shown the key as down before this press was read, and before a change of the map
  // that precedes the press.
  if (change == Change::press) down_.reset(keycode);
  if (down && !down_[keycode]) {
    meanings_[keycode] = keys_.meaning(keycode);
    if (key_code::isOption(meanings_[keycode].keyCode) && !isOptionDown()) optionWasNotAlone_ = false;
  }
  down_[keycode] = down;
  // Modifiers pressed by the program are flags of its own events only, not of the user's.
  if (mark == OwnMark{} && down) modifiers_.press(keycode, meanings_[keycode].flag);
  if (mark == OwnMark{} && !down) modifiers_.release(keycode);
  auto made = event(keycode, down);
  if (mark != OwnMark{}) made.flags = mark.flags;
  made.userData = mark.userData;
  return made;
}

platform::KeyEvent KeyReader::event(unsigned keycode, bool down) const {
  platform::KeyEvent made;
  made.keyCode = meanings_[keycode].keyCode;
  made.type = meanings_[keycode].isModifier ? platform::event_type::flagsChanged
              : down                        ? platform::event_type::keyDown
                                            : platform::event_type::keyUp;
  made.flags = modifiers_.flags();
  return made;
}

}  // namespace keyvora::x11
