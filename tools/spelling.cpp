#include "tools/spelling.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "text/text.h"

namespace keyvora::tools {
namespace {

/// Longer words are not compared.
constexpr std::size_t longestWord = 40;

/// The number of inserted, deleted, replaced and swapped characters between two words (optimal string
/// alignment).
std::size_t slips(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) rows[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) rows[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t exchanged = rows[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, exchanged});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::string_view> nearest(std::string_view word, std::span<const std::string_view> candidates) {
  const std::string written = text::lowerCased(trimmed(word));
  if (written.empty() || written.size() > longestWord) return std::nullopt;
  std::optional<std::string_view> best;
  std::size_t fewest = 0;
  for (const auto candidate : candidates) {
    const std::string wanted = text::lowerCased(candidate);
    const std::size_t count = slips(written, wanted);
    const std::size_t allowed = written == wanted ? 0 : std::min<std::size_t>(wanted.size() / 3, 2);
    if (count <= allowed && (!best || count < fewest)) {
      best = candidate;
      fewest = count;
    }
  }
  return best;
}

}  // namespace keyvora::tools
