#include <string_view>

#include "tap/key_sequence_tap.h"

namespace keyvora {
namespace {

/// By key code, from 0; a dot where the key has no letter.
constexpr std::string_view lettersByKeyCode = "ASDFHGZXCV.BQWERYT123465.97.80.OU.IP.LJ.K....NM";

}  // namespace

std::optional<char> KeySequenceTap::letterFor(std::uint16_t keyCode) {
  if (keyCode >= lettersByKeyCode.size() || lettersByKeyCode[keyCode] == '.') return std::nullopt;
  return lettersByKeyCode[keyCode];
}

}  // namespace keyvora
