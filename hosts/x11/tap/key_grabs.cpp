#include "hosts/x11/tap/key_grabs.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XKBstr.h>

#include <algorithm>
#include <array>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/key_map.h"

namespace keyvora::x11 {

bool KeyGrabs::apply(Extent extent, const std::vector<Window>& windows, const KeyMap& keys) {
  // Ungrabbing every key also ungrabs the Option keys, so they are grabbed again if the keys change.
  const bool sameKeys = extent == extent_ && keys.optionKeycodes() == optionKeycodes_;
  const auto before = std::exchange(windows_, windows);
  extent_ = extent;
  optionKeycodes_ = keys.optionKeycodes();
  for (const Window window : before) {
    if (!sameKeys || std::ranges::find(windows_, window) == windows_.end()) release(window);
  }
  bool granted = true;
  for (const Window window : windows_) {
    const bool isNew = std::ranges::find(before, window) == before.end();
    if (!sameKeys || isNew) granted = grab(window) && granted;
  }
  return granted;
}

bool KeyGrabs::cover(unsigned keycode) const {
  if (windows_.empty() || extent_ == Extent::none) return false;
  return extent_ == Extent::everyKey ||
         std::ranges::find(optionKeycodes_, KeyCode(keycode)) != optionKeycodes_.end();
}

bool KeyGrabs::grab(Window window) const {
  switch (extent_) {
    case Extent::none:
      return true;
    case Extent::everyKey:
      return grab(window, XIAnyKeycode);
    case Extent::option:
      break;
  }
  bool granted = true;
  for (const auto& keycode : optionKeycodes_) {
    granted = grab(window, keycode) && granted;
  }
  return granted;
}

void KeyGrabs::stopRepeating(unsigned keycode) {
  XkbDescRec controls{};
  controls.device_spec = XkbUseCoreKbd;
  if (XkbGetControls(display_, XkbPerKeyRepeatMask, &controls) != Success || controls.ctrls == nullptr)
    return;
  auto& repeats = controls.ctrls->per_key_repeat[keycode / 8];
  const auto asTheUserHasThem = repeats;
  // Disabling the key's repetition in the server ends the present one; enabled again, it applies from the
  // next press.
  repeats = static_cast<unsigned char>(repeats & ~(1U << keycode % 8));
  XkbSetControls(display_, XkbPerKeyRepeatMask, &controls);
  repeats = asTheUserHasThem;
  XkbSetControls(display_, XkbPerKeyRepeatMask, &controls);
  XkbFreeControls(&controls, XkbAllControlsMask, True);
}

void KeyGrabs::replay(Time time) {
  XIAllowEvents(display_, master_, XIReplayDevice, time);
}

void KeyGrabs::swallow(Time time) {
  XIUngrabDevice(display_, master_, time);
}

bool KeyGrabs::grab(Window window, int keycode) const {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  XISetMask(bits.data(), XI_KeyPress);
  XISetMask(bits.data(), XI_KeyRelease);
  XIEventMask mask{.deviceid = master_, .mask_len = int(bits.size()), .mask = bits.data()};
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  // The number of failed grabs; also 0 when the window was closed.
  const int failed = XIGrabKeycode(display_, master_, keycode, window, XIGrabModeSync, XIGrabModeAsync, False,
                                   &mask, 1, &modifiers);
  return failed <= 0;
}

void KeyGrabs::release(Window window) const {
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  XIUngrabKeycode(display_, master_, XIAnyKeycode, window, 1, &modifiers);
}

}  // namespace keyvora::x11
