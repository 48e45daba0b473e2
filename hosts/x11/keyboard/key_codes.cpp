#include "hosts/x11/keyboard/key_codes.h"

#include <algorithm>
#include <array>

namespace keyvora::x11 {
namespace {

namespace key = key_code;

struct Key {
  std::string_view name;
  std::uint16_t code;
};

/// Row by row, from the left. Where two names share a code, synthetic events use the first.
constexpr auto keys = std::to_array<Key>({
    {"ESC", key::escape},
    {"FK01", key::f1},
    {"FK02", key::f2},
    {"FK03", key::f3},
    {"FK04", key::f4},
    {"FK05", key::f5},
    {"FK06", key::f6},
    {"FK07", key::f7},
    {"FK08", key::f8},
    {"FK09", key::f9},
    {"FK10", key::f10},
    {"FK11", key::f11},
    {"FK12", key::f12},
    {"FK13", key::f13},
    {"FK14", key::f14},
    {"FK15", key::f15},
    {"FK16", key::f16},
    {"FK17", key::f17},
    {"FK18", key::f18},
    {"FK19", key::f19},
    {"FK20", key::f20},
    {"PRSC", key::f13},
    {"SCLK", key::f14},
    {"PAUS", key::f15},

    {"TLDE", key::grave},
    {"AE01", key::digit1},
    {"AE02", key::digit2},
    {"AE03", key::digit3},
    {"AE04", key::digit4},
    {"AE05", key::digit5},
    {"AE06", key::digit6},
    {"AE07", key::digit7},
    {"AE08", key::digit8},
    {"AE09", key::digit9},
    {"AE10", key::digit0},
    {"AE11", key::minus},
    {"AE12", key::equal},
    {"AE13", key::jisYen},
    {"BKSP", key::deleteKey},

    {"TAB", key::tab},
    {"AD01", key::q},
    {"AD02", key::w},
    {"AD03", key::e},
    {"AD04", key::r},
    {"AD05", key::t},
    {"AD06", key::y},
    {"AD07", key::u},
    {"AD08", key::i},
    {"AD09", key::o},
    {"AD10", key::p},
    {"AD11", key::leftBracket},
    {"AD12", key::rightBracket},
    {"BKSL", key::backslash},
    {"RTRN", key::returnKey},

    {"CAPS", key::capsLock},
    {"AC01", key::a},
    {"AC02", key::s},
    {"AC03", key::d},
    {"AC04", key::f},
    {"AC05", key::g},
    {"AC06", key::h},
    {"AC07", key::j},
    {"AC08", key::k},
    {"AC09", key::l},
    {"AC10", key::semicolon},
    {"AC11", key::quote},
    {"AC12", key::backslash},

    {"LFSH", key::leftShift},
    {"LSGT", key::isoSection},
    {"AB01", key::z},
    {"AB02", key::x},
    {"AB03", key::c},
    {"AB04", key::v},
    {"AB05", key::b},
    {"AB06", key::n},
    {"AB07", key::m},
    {"AB08", key::comma},
    {"AB09", key::period},
    {"AB10", key::slash},
    {"AB11", key::jisUnderscore},
    {"RTSH", key::rightShift},

    {"LCTL", key::leftCommand},
    {"LWIN", key::leftControl},
    {"LALT", key::leftOption},
    {"SPCE", key::space},
    {"RALT", key::rightOption},
    {"RWIN", key::rightControl},
    {"COMP", key::contextualMenu},
    {"RCTL", key::rightCommand},

    {"INS", key::help},
    {"HOME", key::home},
    {"PGUP", key::pageUp},
    {"DELE", key::forwardDelete},
    {"END", key::end},
    {"PGDN", key::pageDown},
    {"UP", key::upArrow},
    {"LEFT", key::leftArrow},
    {"DOWN", key::downArrow},
    {"RGHT", key::rightArrow},

    {"NMLK", key::keypadClear},
    {"KPDV", key::keypadDivide},
    {"KPMU", key::keypadMultiply},
    {"KPSU", key::keypadMinus},
    {"KP7", key::keypad7},
    {"KP8", key::keypad8},
    {"KP9", key::keypad9},
    {"KPAD", key::keypadPlus},
    {"KP4", key::keypad4},
    {"KP5", key::keypad5},
    {"KP6", key::keypad6},
    {"KP1", key::keypad1},
    {"KP2", key::keypad2},
    {"KP3", key::keypad3},
    {"KPEN", key::keypadEnter},
    {"KP0", key::keypad0},
    {"KPDL", key::keypadDecimal},
    {"KPEQ", key::keypadEquals},

    {"MUTE", key::mute},
    {"VOL-", key::volumeDown},
    {"VOL+", key::volumeUp},
});

}  // namespace

std::uint16_t keyCodeNamed(std::string_view xkbName) {
  const auto* found = std::ranges::find(keys, xkbName, &Key::name);
  return found == keys.end() ? key_code::none : found->code;
}

std::optional<std::string_view> keyName(std::uint16_t keyCode) {
  const auto* found = std::ranges::find(keys, keyCode, &Key::code);
  if (found == keys.end()) return std::nullopt;
  return found->name;
}

}  // namespace keyvora::x11
