#include "tools/letters.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/key_code.h"
#include "tap/key_sequence_tap.h"

namespace keyvora::tools {
namespace {

/// Key codes plus one, by the letter that the tap assigns to them; 0 for characters without a key.
std::array<std::uint16_t, 256> reversed() {
  std::array<std::uint16_t, 256> codes{};
  for (std::uint16_t code = 0; code < platform::key_code::count; ++code) {
    if (const auto letter = KeySequenceTap::letterFor(code)) {
      codes[static_cast<unsigned char>(*letter)] = static_cast<std::uint16_t>(code + 1);
    }
  }
  return codes;
}

}  // namespace

std::optional<std::uint16_t> keyTyping(std::string_view letter) {
  static const auto codes = reversed();
  if (letter.size() != 1) return std::nullopt;
  const auto code = codes[static_cast<unsigned char>(letter[0])];
  if (code == 0) return std::nullopt;
  return static_cast<std::uint16_t>(code - 1);
}

std::optional<std::string> firstUntypable(std::span<const std::string> letters) {
  const auto found = std::ranges::find_if(letters, [](const auto& letter) { return !keyTyping(letter); });
  if (found == letters.end()) return std::nullopt;
  return *found;
}

std::string joined(std::span<const std::string> letters) {
  std::string all;
  for (const auto& letter : letters) all += letter;
  return all;
}

}  // namespace keyvora::tools
