#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace keyvora {

/// A key that an action can name, and its virtual key code (HIToolbox, Events.h; the ANSI keyboard).
struct KeyCode {
  /// Lower-case.
  std::string_view name;
  std::uint16_t code = 0;
};

/// Every key that an action can name. Names are unique.
inline constexpr std::array<KeyCode, 63> keyCodes{{
    {"a", 0},       {"s", 1},     {"d", 2},       {"f", 3},    {"h", 4},    {"g", 5},       //
    {"z", 6},       {"x", 7},     {"c", 8},       {"v", 9},    {"b", 11},   {"q", 12},      //
    {"w", 13},      {"e", 14},    {"r", 15},      {"y", 16},   {"t", 17},   {"1", 18},      //
    {"2", 19},      {"3", 20},    {"4", 21},      {"6", 22},   {"5", 23},   {"=", 24},      //
    {"9", 25},      {"7", 26},    {"-", 27},      {"8", 28},   {"0", 29},   {"]", 30},      //
    {"o", 31},      {"u", 32},    {"[", 33},      {"i", 34},   {"p", 35},   {"l", 37},      //
    {"j", 38},      {"'", 39},    {"k", 40},      {";", 41},   {"\\", 42},  {",", 43},      //
    {"/", 44},      {"n", 45},    {"m", 46},      {".", 47},   {"`", 50},   {"space", 49},  //
    {"return", 36}, {"tab", 48},  {"escape", 53}, {"f1", 122}, {"f2", 120}, {"f3", 99},     //
    {"f4", 118},    {"f5", 96},   {"f6", 97},     {"f7", 98},  {"f8", 100}, {"f9", 101},    //
    {"f10", 109},   {"f11", 103}, {"f12", 111},                                             //
}};

/// The code of the key with this name in any case; none for a name outside the table. Nothing is trimmed, and
/// there are no other names for a key. Any thread.
std::optional<std::uint16_t> keyCodeFor(std::string_view name);

}  // namespace keyvora
