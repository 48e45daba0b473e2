#include "hosts/x11/keyboard/key_meaning.h"

#define XK_XKB_KEYS
#define XK_MISCELLANY
#include <X11/keysymdef.h>

#include "hosts/x11/keyboard/modifier_state.h"

namespace keyvora::x11 {
namespace {

KeyMeaning modifier(std::uint16_t keyCode) {
  return {keyCode, true, flagOf(keyCode)};
}

}  // namespace

KeyMeaning keyMeaning(unsigned long symbol, std::uint16_t place) {
  switch (symbol) {
    case XK_Alt_L:
    case XK_Meta_L:
      return modifier(key_code::leftOption);
    case XK_Alt_R:
    case XK_Meta_R:
      return modifier(key_code::rightOption);
    case XK_Control_L:
      return modifier(key_code::leftCommand);
    case XK_Control_R:
      return modifier(key_code::rightCommand);
    case XK_Super_L:
    case XK_Hyper_L:
      return modifier(key_code::leftControl);
    case XK_Super_R:
    case XK_Hyper_R:
      return modifier(key_code::rightControl);
    case XK_Shift_L:
      return modifier(key_code::leftShift);
    case XK_Shift_R:
      return modifier(key_code::rightShift);
    case XK_Caps_Lock:
    case XK_Shift_Lock:
      return modifier(key_code::capsLock);
    case XK_ISO_Level3_Shift:
    case XK_ISO_Level3_Latch:
    case XK_ISO_Level5_Shift:
    case XK_ISO_Level5_Latch:
    case XK_Mode_switch:
      return {key_code::none, true, platform::event_flag::option};
    default:
      break;
  }
  const bool choosesLayout = symbol >= XK_ISO_Group_Latch && symbol <= XK_ISO_Last_Group_Lock;
  if (choosesLayout) return {key_code::none, true, 0};
  // A key in the place of a modifier that makes another symbol: Compose, Menu.
  if (isModifier(place)) return {};
  return {place, false, 0};
}

}  // namespace keyvora::x11
