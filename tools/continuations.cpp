#include "tools/continuations.h"

#include <algorithm>
#include <map>

#include "text/text.h"
#include "tools/letters.h"

namespace keyvora::tools {
namespace {

/// The width of the names on one line, in characters; further names are only counted.
constexpr std::size_t widest = 90;

/// The letters left to type, and the name.
std::string remaining(const Sequence& sequence, std::size_t typed) {
  const auto letters = sequence.letters();
  auto keys = joined(std::span(letters).subspan(typed));
  return (keys.empty() ? "" : keys + " ") + sequence.name;
}

std::string line(const Continuation& continuation, std::size_t typed) {
  const auto& sequences = continuation.sequences;
  if (sequences.size() == 1) {
    const auto letters = sequences.front()->letters();
    return joined(std::span(letters).subspan(typed)) + "  " + sequences.front()->name;
  }
  std::string text = continuation.letter + "  ";
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    const auto next = (i == 0 ? "" : ", ") + remaining(*sequences[i], typed + 1);
    if (i > 0 && text::characters(text + next).size() > widest) {
      return text + " and " + std::to_string(sequences.size() - i) + " more";
    }
    text += next;
  }
  return text;
}

}  // namespace

std::vector<Continuation> continuationsOf(std::span<const std::string> typed, const Mapping& mapping) {
  std::map<std::vector<std::string>, const Sequence*> firing;
  std::vector<std::vector<std::string>> order;
  for (const auto& sequence : mapping.sequences) {
    auto letters = sequence.letters();
    if (letters.size() <= typed.size() || !std::equal(typed.begin(), typed.end(), letters.begin())) continue;
    if (firing.insert_or_assign(letters, &sequence).second) order.push_back(std::move(letters));
  }
  std::vector<Continuation> all;
  std::map<std::string, std::size_t> places;
  for (const auto& letters : order) {
    const auto& letter = letters[typed.size()];
    const auto place = places.emplace(letter, all.size());
    if (place.second) all.push_back({letter, {}});
    all[place.first->second].sequences.push_back(firing.at(letters));
  }
  return all;
}

std::size_t sequencesIn(const std::vector<Continuation>& continuations) {
  std::size_t count = 0;
  for (const auto& each : continuations) count += each.sequences.size();
  return count;
}

std::vector<std::string> asLines(const std::vector<Continuation>& continuations, std::size_t lettersTyped) {
  std::vector<std::string> lines;
  lines.reserve(continuations.size());
  for (const auto& each : continuations) lines.push_back(line(each, lettersTyped));
  return lines;
}

}  // namespace keyvora::tools
