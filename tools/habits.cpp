#include "tools/habits.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "text/ascii.h"
#include "tools/letters.h"
#include "tools/shipped.h"
#include "tools/spelling.h"
#include "tools/update.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

/// Longer words are not sequences; and the number of entries shown of each kind.
constexpr std::size_t longest = 16;
constexpr std::size_t mostTold = 20;

constexpr std::string_view noSequence = "no sequence ";

/// The letters of a text without blanks; none when it contains anything else.
std::optional<std::string> lettersOf(std::string_view text) {
  std::string letters;
  for (const char c : text) {
    if (c == ' ') continue;
    if (!text::isAsciiLetter(c) && !text::isAsciiDigit(c)) return std::nullopt;
    letters += text::asciiUpper(c);
    if (letters.size() > longest) return std::nullopt;
  }
  if (letters.empty()) return std::nullopt;
  return letters;
}

/// The part of a log line after its time stamp, which has two words.
std::string_view messageOf(std::string_view line) {
  for (int word = 0; word < 2; ++word) {
    const auto end = line.find(' ');
    if (end == std::string_view::npos) return {};
    line.remove_prefix(end + 1);
  }
  return line;
}

bool tellsAnEnd(std::string_view message) {
  for (const auto kind : {"keystroke", "menu", "applescript"}) {
    if (message.ends_with(" (" + std::string(kind) + ")")) return true;
  }
  return message.find(" (keytips ") != std::string_view::npos ||
         message.find(" FAILED") != std::string_view::npos;
}

using Counts = std::vector<std::pair<std::string, std::size_t>>;

/// Sorted by number, the highest first, then by letters.
Counts most(const std::map<std::string, std::size_t>& counts) {
  Counts all(counts.begin(), counts.end());
  std::ranges::stable_sort(all, [](const auto& a, const auto& b) { return a.second > b.second; });
  if (all.size() > mostTold) all.resize(mostTold);
  return all;
}

std::string line(std::size_t count, const std::string& what) {
  const auto number = std::to_string(count);
  return std::string(number.size() < 6 ? 6 - number.size() : 0, ' ') + number + "  " + what + "\n";
}

/// The present shipped entry with these letters, as JSON lines.
std::optional<std::string> shippedEntry(const std::string& letters, const Document& document) {
  const auto* origin = originOf(document);
  if (origin == nullptr) return std::nullopt;
  const Document shipped{std::string(origin->bytes)};
  for (const auto& entry : shipped.entries()) {
    if (joined(entry.letters) == letters) {
      return "    " + std::string(writtenIn(entry, origin->bytes));
    }
  }
  return std::nullopt;
}

std::string advice(const std::string& letters, const Document& document,
                   const std::map<std::string, std::string>& names) {
  if (const auto found = names.find(letters); found != names.end()) {
    return "is there now: " + found->second;
  }
  if (const auto entry = shippedEntry(letters, document)) return "comes with keyvora; to paste:\n" + *entry;
  std::vector<std::string_view> candidates;
  for (const auto& [keys, name] : names) {
    if (!keys.empty()) candidates.push_back(keys);
  }
  if (const auto meant = nearest(letters, candidates)) {
    return "did you mean " + std::string(*meant) + "  " + names.at(std::string(*meant)) + "?";
  }
  return "to paste and fill in:\n    { \"keys\": \"" + letters +
         "\", \"name\": \"What it does\", \"action\": { \"kind\": \"menu\", \"path\": [\"Menu\", \"Item\"] } "
         "}";
}

}  // namespace

Habits habitsIn(std::string_view log) {
  Habits habits;
  while (!log.empty()) {
    const auto end = log.find('\n');
    const auto message = messageOf(log.substr(0, end));
    log.remove_prefix(end == std::string_view::npos ? log.size() : end + 1);
    if (message.starts_with(noSequence)) {
      if (const auto letters = lettersOf(message.substr(noSequence.size()))) ++habits.vain[*letters];
    } else if (const auto gap = message.find("  "); gap != std::string_view::npos && tellsAnEnd(message)) {
      if (const auto letters = lettersOf(message.substr(0, gap))) ++habits.fired[*letters];
    }
  }
  return habits;
}

std::string asText(const Habits& habits, const Document& document) {
  std::map<std::string, std::string> names;
  for (const auto& entry : document.entries()) {
    auto name = inQuotes(entry.sequence.name);
    names[joined(entry.letters)] = name.substr(1, name.size() - 2);
  }
  std::string text = "What you fire most:\n";
  for (const auto& [letters, count] : most(habits.fired)) {
    const auto name = names.find(letters);
    text +=
        line(count, letters + "  " + (name == names.end() ? "(no longer in the document)" : name->second));
  }
  if (habits.fired.empty()) text += "  nothing yet\n";
  if (habits.vain.empty()) return text;
  text += "Letters that led nowhere:\n";
  for (const auto& [letters, count] : most(habits.vain)) {
    text += line(count, letters + "  " + advice(letters, document, names));
  }
  return text;
}

}  // namespace keyvora::tools
