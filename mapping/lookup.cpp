#include <algorithm>

#include "mapping/mapping.h"
#include "text/ascii.h"
#include "text/text.h"

namespace keyvora {
namespace {

/// How the typed letters relate to a sequence's letters.
enum class Relation { none, prefix, same };

bool isAsciiWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isLetter(const std::string& typed, char letter) {
  if (typed.size() == 1) return typed.front() == letter;
  return text::equal(typed, std::string_view(&letter, 1));
}

/// `keys` is ASCII: each of its characters is a letter by itself, except CR LF, which is one character and
/// dropped.
Relation relateAscii(std::span<const std::string> typed, std::string_view keys) {
  std::size_t matched = 0;
  for (const char c : keys) {
    if (isAsciiWhiteSpace(c)) continue;
    if (matched == typed.size()) return Relation::prefix;
    if (!isLetter(typed[matched], text::asciiUpper(c))) return Relation::none;
    ++matched;
  }
  return matched == typed.size() ? Relation::same : Relation::none;
}

/// Whether the first characters already show that the letters differ, as they usually do: an ASCII letter
/// is canonically equivalent only to strings that start with it.
bool startsOtherwise(std::span<const std::string> typed, std::string_view keys) {
  if (typed.empty() || typed.front().size() != 1 || keys.empty()) return false;
  const char first = keys.front();
  const bool isLetterOrDigit = text::isAsciiLetter(first) || text::isAsciiDigit(first);
  return isLetterOrDigit && text::asciiUpper(first) != typed.front().front();
}

Relation relate(std::span<const std::string> typed, const Sequence& sequence) {
  if (startsOtherwise(typed, sequence.keys)) return Relation::none;
  if (text::isAscii(sequence.keys)) return relateAscii(typed, sequence.keys);
  const auto letters = sequence.letters();
  if (letters.size() < typed.size()) return Relation::none;
  if (!std::ranges::equal(typed, std::span(letters).first(typed.size()), text::equal)) return Relation::none;
  return letters.size() == typed.size() ? Relation::same : Relation::prefix;
}

}  // namespace

std::vector<std::string> Sequence::letters() const {
  auto letters = text::characters(text::upperCased(keys));
  std::erase_if(letters, text::isWhiteSpace);
  return letters;
}

Match Mapping::lookup(std::span<const std::string> typed) const {
  Match match;
  for (const Sequence& sequence : sequences) {
    switch (relate(typed, sequence)) {
      case Relation::same:
        match.exact = &sequence;
        break;
      case Relation::prefix:
        match.isPrefixOfLonger = true;
        break;
      case Relation::none:
        break;
    }
  }
  return match;
}

}  // namespace keyvora
