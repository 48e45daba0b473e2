#include "tools/known_words.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "tools/embedded.h"
#include "tools/spelling.h"

namespace keyvora::tools {
namespace {

/// Words that differ more than this are not considered misspellings (see nearest()).
constexpr int mostSlips = 2;

/// The parts of a text between these separators, without lines that begin with a number sign.
std::vector<std::string_view> parts(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> found;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    auto line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('#')) continue;
    while (!line.empty()) {
      const auto length = std::min(line.find_first_of(separators), line.size());
      if (length > 0) found.push_back(line.substr(0, length));
      line.remove_prefix(std::min(length + 1, line.size()));
    }
  }
  return found;
}

}  // namespace

KnownWords::KnownWords(std::vector<std::string_view> words) : sorted_(std::move(words)) {
  std::ranges::sort(sorted_);
  letters_.reserve(sorted_.size());
  for (const auto word : sorted_) letters_.push_back(lettersOf(word));
}

KnownWords::Letters KnownWords::lettersOf(std::string_view word) {
  Letters letters{};
  for (const char c : word) {
    const bool isSmall = c >= 'a' && c <= 'z';
    const bool isCapital = c >= 'A' && c <= 'Z';
    ++letters[static_cast<std::size_t>(isSmall ? c - 'a' : isCapital ? c - 'A' : 26)];
  }
  return letters;
}

bool KnownWords::contains(std::string_view word) const {
  return std::ranges::binary_search(sorted_, word);
}

std::optional<std::string_view> KnownWords::meantBy(std::string_view word) const {
  if (contains(word)) return std::nullopt;
  // A misspelling omits, adds or replaces few letters. Comparing letter counts first leaves few words for
  // the slower comparison.
  const auto written = lettersOf(word);
  std::vector<std::string_view> candidates;
  for (std::size_t index = 0; index < sorted_.size(); ++index) {
    int differences = 0;
    for (std::size_t letter = 0; letter < written.size(); ++letter) {
      differences += std::abs(written[letter] - letters_[index][letter]);
    }
    if (differences <= 2 * mostSlips) candidates.push_back(sorted_[index]);
  }
  return nearest(word, candidates);
}

const KnownWords& menuTitles() {
  static const KnownWords titles(parts(embedded::menuTitles, "\n"));
  return titles;
}

const KnownWords& scriptWords() {
  static const KnownWords words(parts(embedded::scriptWords, " "));
  return words;
}

}  // namespace keyvora::tools
