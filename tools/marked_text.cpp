#include "tools/marked_text.h"

#include <algorithm>
#include <vector>

#include "text/utf8.h"
#include "tools/check.h"

namespace keyvora::tools {
namespace {

/// How many characters of a line are shown, and how many of those before the position.
constexpr std::size_t shown = 96;
constexpr std::size_t before = 60;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The lines of a document, split as its positions count them; none when it is not UTF-8.
std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  if (!text::isWellFormed(text)) return lines;
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  while (true) {
    const auto end = text.find_first_of("\r\n");
    lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return lines;
    text.remove_prefix(end + (text.substr(end, 2) == "\r\n" ? 2 : 1));
  }
}

bool isControl(char32_t codePoint) {
  return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

/// The characters of a line from a column on, safe for a terminal.
std::string excerpt(std::string_view line, std::size_t firstColumn) {
  std::string text;
  std::size_t column = 1;
  while (!line.empty() && column < firstColumn + shown) {
    const auto next = text::firstCodePoint(line);
    line.remove_prefix(next.length);
    if (column++ < firstColumn) continue;
    const bool isTab = next.value == U'\t';
    text::append(text, isTab ? U' ' : isControl(next.value) ? text::replacementCharacter : next.value);
  }
  return text + (line.empty() ? "" : "…");
}

std::string painted(std::string text, std::string_view colour, bool colours) {
  if (!colours) return text;
  return "\x1B[" + std::string(colour) + "m" + text + "\x1B[0m";
}

}  // namespace

std::string asMarkedText(const Findings& findings, std::string_view file, std::string_view bytes,
                         bool colours) {
  const auto lines = linesOf(bytes);
  std::string text;
  for (const auto& finding : findings) {
    const auto colour = finding.severity == Severity::error ? "1;31" : "1;35";
    auto line = asText({finding}, file);
    const auto word = ": " + std::string(nameOf(finding.severity)) + ": ";
    const auto place = line.find(word, file.size());
    text += painted(line.substr(0, place), "1", colours) + ": " +
            painted(std::string(nameOf(finding.severity)) + ":", colour, colours) + " " +
            line.substr(place + word.size());
    const auto [number, column] = finding.position;
    if (number > lines.size()) continue;
    const auto first = column > before ? column - before : 1;
    const std::string gutter = "  " + std::to_string(number) + " | ";
    const std::string cut = first > 1 ? "…" : "";
    text += gutter + cut + excerpt(lines[number - 1], first) + "\n" + std::string(gutter.size() - 2, ' ') +
            "| " + std::string(column - first + (first > 1 ? 1 : 0), ' ') + painted("^", "1;32", colours) +
            "\n";
  }
  return text;
}

}  // namespace keyvora::tools
