#include "bench/documents.h"

#include <string>

namespace keyvora::bench {
namespace {

constexpr std::size_t letters = 26;

/// "AA", "AB", ...: the shortest first, H foremost, as most sequences start with it.
std::string keysOf(std::size_t number) {
  std::size_t length = 2;
  std::size_t count = letters * letters;
  while (number >= count) {
    number -= count;
    ++length;
    count *= letters;
  }
  std::string keys(length, 'A');
  for (std::size_t i = length; i > 0; --i) {
    keys[i - 1] = static_cast<char>('A' + (number + (i == 1 ? 7 : 0)) % letters);
    number /= letters;
  }
  return keys;
}

Action actionOf(std::size_t number) {
  switch (number % 4) {
    case 0:
      return action::KeyTips{"HFC"};
    case 1:
      return action::Keystroke{"v", {"cmd", "shift"}};
    case 2:
      return action::Menu{{"Format", "Cells..."}};
    default:
      return action::AppleScript{"set bold of font object of selection to true"};
  }
}

}  // namespace

Mapping document(std::size_t sequences) {
  Mapping mapping;
  mapping.timeoutMilliseconds = 800;
  mapping.tabs = {{"H", "Home"}, {"N", "Insert"}, {"M", "Formulas"}};
  for (std::size_t i = 0; i < sequences; ++i) {
    mapping.sequences.push_back({keysOf(i), "Command number " + std::to_string(i), actionOf(i)});
  }
  return mapping;
}

}  // namespace keyvora::bench
