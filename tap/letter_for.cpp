#include <array>

#include "platform/key_code.h"
#include "runner/key_names.h"
#include "tap/key_sequence_tap.h"
#include "text/ascii.h"

namespace keyvora {
namespace {

/// The character of a key whose name is a letter or a digit, in upper case; a NUL for every other key.
constexpr char letterOf(std::string_view name) {
  if (name.size() != 1) return '\0';
  const char c = name.front();
  return text::isAsciiLetter(c) || text::isAsciiDigit(c) ? text::asciiUpper(c) : '\0';
}

constexpr auto lettersByKeyCode = [] {
  std::array<char, platform::key_code::count> letters{};
  for (const auto& key : keyNames) letters[key.code] = letterOf(key.name);
  return letters;
}();

}  // namespace

std::optional<char> KeySequenceTap::letterFor(std::uint16_t keyCode) {
  if (keyCode >= lettersByKeyCode.size() || lettersByKeyCode[keyCode] == '\0') return std::nullopt;
  return lettersByKeyCode[keyCode];
}

}  // namespace keyvora
