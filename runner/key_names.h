#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/key_code.h"

namespace keyvora {

/// A name by which an action names a key.
struct KeyName {
  /// Lower-case.
  std::string_view name;
  /// Virtual key code.
  std::uint16_t code = 0;
};

/// Every key that an action can name. Names are unique.
inline constexpr auto keyNames = [] {
  namespace key = platform::key_code;
  return std::to_array<KeyName>({{"a", key::a},
                                 {"s", key::s},
                                 {"d", key::d},
                                 {"f", key::f},
                                 {"h", key::h},
                                 {"g", key::g},
                                 {"z", key::z},
                                 {"x", key::x},
                                 {"c", key::c},
                                 {"v", key::v},
                                 {"b", key::b},
                                 {"q", key::q},
                                 {"w", key::w},
                                 {"e", key::e},
                                 {"r", key::r},
                                 {"y", key::y},
                                 {"t", key::t},
                                 {"1", key::digit1},
                                 {"2", key::digit2},
                                 {"3", key::digit3},
                                 {"4", key::digit4},
                                 {"6", key::digit6},
                                 {"5", key::digit5},
                                 {"=", key::equal},
                                 {"9", key::digit9},
                                 {"7", key::digit7},
                                 {"-", key::minus},
                                 {"8", key::digit8},
                                 {"0", key::digit0},
                                 {"]", key::rightBracket},
                                 {"o", key::o},
                                 {"u", key::u},
                                 {"[", key::leftBracket},
                                 {"i", key::i},
                                 {"p", key::p},
                                 {"l", key::l},
                                 {"j", key::j},
                                 {"'", key::quote},
                                 {"k", key::k},
                                 {";", key::semicolon},
                                 {"\\", key::backslash},
                                 {",", key::comma},
                                 {"/", key::slash},
                                 {"n", key::n},
                                 {"m", key::m},
                                 {".", key::period},
                                 {"`", key::grave},
                                 {"space", key::space},
                                 {"return", key::returnKey},
                                 {"tab", key::tab},
                                 {"escape", key::escape},
                                 {"f1", key::f1},
                                 {"f2", key::f2},
                                 {"f3", key::f3},
                                 {"f4", key::f4},
                                 {"f5", key::f5},
                                 {"f6", key::f6},
                                 {"f7", key::f7},
                                 {"f8", key::f8},
                                 {"f9", key::f9},
                                 {"f10", key::f10},
                                 {"f11", key::f11},
                                 {"f12", key::f12}});
}();

/// The code of the key with this name, case ignored; none for a name outside the table. Nothing is trimmed.
/// Any thread.
std::optional<std::uint16_t> keyCodeFor(std::string_view name);

}  // namespace keyvora
