#include "bench/documents.h"

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace keyvora::bench {
namespace {

/// A third of the sequences start with H, the others with any letter, in random order: the cost of a letter
/// must depend on the number of sequences, not on the place of the matching ones.
char firstLetter(std::uint32_t number) {
  constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::minstd_rand random(number + 1);
  return random() % 3 == 0 ? 'H' : letters[random() % letters.size()];
}

/// The first letter, and the number in letters, so that all keys differ.
std::string keysOf(std::size_t number) {
  constexpr std::size_t letters = 26;
  std::string keys(1, firstLetter(static_cast<std::uint32_t>(number)));
  do {
    keys += static_cast<char>('A' + number % letters);
    number /= letters;
  } while (number > 0);
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
