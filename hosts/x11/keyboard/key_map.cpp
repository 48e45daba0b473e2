#include "hosts/x11/keyboard/key_map.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XKBstr.h>

#include <memory>
#include <string_view>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/modifier_state.h"
#include "hosts/x11/keyboard/sticky_keys.h"
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

/// The virtual key code of a key, by its name or one of its aliases in the description.
std::uint16_t codeOf(const XkbNamesRec& names, const char (&name)[XkbKeyNameLength]) {
  auto code = keyCodeNamed(text(name));
  for (int i = 0; code == key_code::none && i < names.num_key_aliases; ++i) {
    const auto& alias = names.key_aliases[i];
    if (text(alias.real) == text(name)) code = keyCodeNamed(text(alias.alias));
  }
  return code;
}

/// The key symbol of a key in a group, without modifiers.
KeySym symbolOf(const XkbDescRec& description, unsigned keycode, unsigned group) {
  const auto& symbols = description.map->key_sym_map[keycode];
  const unsigned count = XkbNumGroups(symbols.group_info);
  if (count == 0) return NoSymbol;
  if (group >= count) {
    switch (XkbOutOfRangeGroupAction(symbols.group_info)) {
      case XkbClampIntoRange:
        group = count - 1;
        break;
      case XkbRedirectIntoRange:
        group = XkbOutOfRangeGroupNumber(symbols.group_info);
        if (group >= count) group = 0;
        break;
      default:
        group %= count;
    }
  }
  return description.map->syms[symbols.offset + group * symbols.width];
}

}  // namespace

KeyMap::KeyMap(Display* display) : display_(display) {
  int unused = 0;
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  XkbQueryExtension(display_, &unused, &xkbEvent_, &unused, &major, &minor);
  XkbSelectEvents(display_, XkbUseCoreKbd, XkbNewKeyboardNotifyMask, XkbNewKeyboardNotifyMask);
  constexpr unsigned mapParts = XkbModifierMapMask | XkbKeySymsMask;
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbMapNotify, mapParts, mapParts);
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbNamesNotify, XkbKeyNamesMask, XkbKeyNamesMask);
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbStateNotify, XkbGroupStateMask, XkbGroupStateMask);
  XkbSelectEventDetails(display_, XkbUseCoreKbd, XkbControlsNotify, XkbControlsEnabledMask,
                        XkbControlsEnabledMask);
  stickyKeys_ = stickyKeysAreOn(display_);
  read();
}

bool KeyMap::notice(const XEvent& event) {
  if (event.type != xkbEvent_) return false;
  const auto& told = reinterpret_cast<const XkbEvent&>(event);
  if (told.any.xkb_type == XkbControlsNotify) {
    stickyKeys_ = (told.ctrls.enabled_ctrls & XkbStickyKeysMask) != 0;
    return false;
  }
  if (told.any.xkb_type == XkbStateNotify) {
    group_ = unsigned(told.state.group) % groups;
  } else {
    skipMapEvents();
    read();
  }
  return true;
}

/// Drops the pending events of the same kind. A change of layout sends many, a key may wait behind them,
/// and the description that is read next includes them all.
void KeyMap::skipMapEvents() {
  const auto isMapEvent = [](Display*, XEvent* event, XPointer type) -> Bool {
    if (event->type != *reinterpret_cast<const int*>(type)) return False;
    const int kind = reinterpret_cast<const XkbEvent*>(event)->any.xkb_type;
    return kind == XkbNewKeyboardNotify || kind == XkbMapNotify || kind == XkbNamesNotify ? True : False;
  };
  XEvent skipped;
  while (XCheckIfEvent(display_, &skipped, isMapEvent, reinterpret_cast<XPointer>(&xkbEvent_)) == True) {
  }
}

std::optional<GroupChange> KeyMap::groupChange(const XEvent& event) const {
  if (event.type != xkbEvent_) return std::nullopt;
  const auto& told = reinterpret_cast<const XkbEvent&>(event);
  if (told.any.xkb_type != XkbStateNotify) return std::nullopt;
  return GroupChange{told.state.keycode, told.state.time};
}

std::optional<KeyCode> KeyMap::keycode(std::uint16_t keyCode) const {
  const auto& keycodes = keycodes_[group_];
  if (keyCode >= keycodes.size() || keycodes[keyCode] == 0) return std::nullopt;
  return keycodes[keyCode];
}

unsigned KeyMap::modifierBits(std::uint64_t flags) const {
  using namespace platform::event_flag;
  unsigned bits = 0;
  if ((flags & shift) != 0) bits |= ShiftMask;
  // Applications still interpret the usual bit of a modifier that no key of the layout makes.
  constexpr std::array<std::pair<std::uint16_t, unsigned>, 3> keys{{{key_code::leftControl, Mod4Mask},
                                                                    {key_code::leftOption, Mod1Mask},
                                                                    {key_code::leftCommand, ControlMask}}};
  for (const auto& [key, usual] : keys) {
    if ((flags & flagOf(key)) == 0) continue;
    const auto number = keycode(key);
    bits |= number && modifiers_[*number] != 0 ? modifiers_[*number] : usual;
  }
  return bits;
}

void KeyMap::read() {
  meanings_ = {};
  keycodes_ = {};
  optionKeycodes_.clear();
  modifiers_.fill(0);
  XkbStateRec state{};
  if (XkbGetState(display_, XkbUseCoreKbd, &state) == Success) group_ = state.group % groups;
  constexpr unsigned parts = XkbModifierMapMask | XkbKeySymsMask | XkbKeyTypesMask;
  const Description description(XkbGetMap(display_, parts, XkbUseCoreKbd));
  if (!description || description->map == nullptr || description->map->key_sym_map == nullptr) return;
  if (XkbGetNames(display_, XkbKeyNamesMask | XkbKeyAliasesMask, description.get()) != Success) return;
  if (description->names == nullptr || description->names->keys == nullptr) return;
  for (unsigned keycode = description->min_key_code; keycode <= description->max_key_code; ++keycode) {
    const auto& name = description->names->keys[keycode].name;
    const auto place = codeOf(*description->names, name);
    bool isOption = false;
    for (unsigned group = 0; group < groups; ++group) {
      const auto meaning = keyMeaning(symbolOf(*description, keycode, group), place);
      meanings_[group][keycode] = meaning;
      isOption = isOption || key_code::isOption(meaning.keyCode);
      auto& keycodes = keycodes_[group];
      const auto code = meaning.keyCode;
      if (code < keycodes.size() && (keycodes[code] == 0 || text(name) == keyName(code))) {
        keycodes[code] = KeyCode(keycode);
      }
    }
    if (isOption) optionKeycodes_.push_back(KeyCode(keycode));
    if (description->map->modmap != nullptr) modifiers_[keycode] = description->map->modmap[keycode];
  }
}

}  // namespace keyvora::x11
