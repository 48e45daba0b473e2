#include "hosts/x11/keyboard/key_map.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XKBstr.h>

#include <memory>
#include <string_view>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/modifier_state.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {
namespace {

struct FreeDescription {
  void operator()(XkbDescPtr description) const { XkbFreeKeyboard(description, XkbAllComponentsMask, True); }
};
using Description = std::unique_ptr<XkbDescRec, FreeDescription>;

/// A key name is four bytes, padded with zeros.
std::string_view text(const char (&name)[XkbKeyNameLength]) {
  const std::string_view padded(name, XkbKeyNameLength);
  return padded.substr(0, padded.find('\0'));
}

/// The virtual key code of a key by its name, or by another name that the description gives it.
std::uint16_t codeOf(const XkbNamesRec& names, const char (&name)[XkbKeyNameLength]) {
  auto code = keyCodeNamed(text(name));
  for (int i = 0; code == key_code::none && i < names.num_key_aliases; ++i) {
    const auto& alias = names.key_aliases[i];
    if (text(alias.real) == text(name)) code = keyCodeNamed(text(alias.alias));
  }
  return code;
}

}  // namespace

KeyMap::KeyMap(Display* display) : display_(display) {
  int unused = 0;
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  XkbQueryExtension(display_, &unused, &xkbEvent_, &unused, &major, &minor);
  XkbSelectEvents(display_, XkbUseCoreKbd, XkbNewKeyboardNotifyMask, XkbNewKeyboardNotifyMask);
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbMapNotify, XkbModifierMapMask, XkbModifierMapMask);
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbNamesNotify, XkbKeyNamesMask, XkbKeyNamesMask);
  read();
}

bool KeyMap::notice(const XEvent& event) {
  if (event.type != xkbEvent_) return false;
  read();
  return true;
}

std::optional<KeyCode> KeyMap::keycode(std::uint16_t keyCode) const {
  if (keyCode >= keycodes_.size() || keycodes_[keyCode] == 0) return std::nullopt;
  return keycodes_[keyCode];
}

unsigned KeyMap::modifierBits(std::uint64_t flags) const {
  using namespace platform::event_flag;
  unsigned bits = 0;
  if ((flags & shift) != 0) bits |= ShiftMask;
  for (const auto key : {key_code::leftControl, key_code::leftOption, key_code::leftCommand}) {
    if ((flags & flagOf(key)) == 0) continue;
    if (const auto number = keycode(key)) bits |= modifiers_[*number];
  }
  return bits;
}

void KeyMap::read() {
  keyCodes_.fill(key_code::none);
  keycodes_.fill(0);
  modifiers_.fill(0);
  const Description description(XkbGetMap(display_, XkbModifierMapMask, XkbUseCoreKbd));
  if (!description) return;
  if (XkbGetNames(display_, XkbKeyNamesMask | XkbKeyAliasesMask, description.get()) != Success) return;
  if (description->names == nullptr || description->names->keys == nullptr) return;
  for (unsigned keycode = description->min_key_code; keycode <= description->max_key_code; ++keycode) {
    const auto& name = description->names->keys[keycode].name;
    const auto code = codeOf(*description->names, name);
    keyCodes_[keycode] = code;
    if (code < keycodes_.size() && (keycodes_[code] == 0 || text(name) == keyName(code))) {
      keycodes_[code] = KeyCode(keycode);
    }
    if (description->map != nullptr && description->map->modmap != nullptr) {
      modifiers_[keycode] = description->map->modmap[keycode];
    }
  }
}

}  // namespace keyvora::x11
