#include "tools/update.h"

#include <algorithm>
#include <map>
#include <utility>

#include "mapping/document_keys.h"
#include "text/utf8.h"
#include "tools/letters.h"

namespace keyvora::tools {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The offset after the object or array that starts at an offset; the text must be valid JSON.
std::size_t endOfContainer(std::string_view text, std::size_t begin) {
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t i = begin; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') {
        ++i;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '{' || c == '[') {
      ++depth;
    } else if ((c == '}' || c == ']') && --depth == 0) {
      return i + 1;
    }
  }
  return text.size();
}

std::string_view textOf(const json::Value& container, std::string_view text) {
  const auto begin = container.offset();
  return text.substr(begin, endOfContainer(text, begin) - begin);
}

/// The line ending of a text, taken from its first line.
std::string lineEnd(std::string_view text) {
  const auto end = text.find_first_of("\r\n");
  if (end == std::string_view::npos || text[end] == '\n') return "\n";
  return text.substr(end, 2) == "\r\n" ? "\r\n" : "\r";
}

std::string withLineEnds(std::string_view text, const std::string& end) {
  std::string result;
  for (const char c : text) {
    if (c == '\n') {
      result += end;
    } else if (c != '\r') {
      result += c;
    }
  }
  return result;
}

/// The blanks at the start of the line that contains an offset.
std::string indent(std::string_view text, std::size_t offset) {
  const auto before = text.substr(0, offset).find_last_of("\r\n");
  const auto start = before == std::string_view::npos ? 0 : before + 1;
  const auto end = text.find_first_not_of(" \t", start);
  return std::string(text.substr(start, std::min(end, offset) - start));
}

/// Changes to a text, made from its end to its start so that offsets stay valid.
class Edits {
 public:
  void replace(std::size_t begin, std::size_t size, std::string by) { edits_[begin] = {size, std::move(by)}; }

  [[nodiscard]] std::string apply(std::string_view text) const {
    std::string result(text);
    for (auto edit = edits_.rbegin(); edit != edits_.rend(); ++edit) {
      result.replace(edit->first, edit->second.first, edit->second.second);
    }
    return result;
  }

 private:
  std::map<std::size_t, std::pair<std::size_t, std::string>> edits_;
};

using ByLetters = std::map<std::vector<std::string>, const Entry*>;

/// Of several sequences with the same letters, the last one, which fires.
ByLetters firing(const Document& document) {
  ByLetters entries;
  for (const auto& entry : document.entries()) entries[entry.letters] = &entry;
  return entries;
}

/// The edition of a document: the latest edition in which one of its entries first appeared.
int editionOf(const Document& document, const ShippedEntries& known) {
  int edition = 0;
  for (const auto& entry : document.entries()) {
    const auto found = known.find(fingerprint(entry.source));
    if (found != known.end()) edition = std::max(edition, found->second);
  }
  return edition;
}

/// Inserts entries after the last sequence, each on lines of its own.
void append(const std::vector<std::string>& added, const Document& document, std::string_view text,
            Edits& edits) {
  if (added.empty()) return;
  const auto end = lineEnd(text);
  const auto sequences = document.root()->find(key::sequences).value();
  std::optional<json::Value> last;
  for (const auto element : sequences.elements()) last = element;
  const auto at = last ? last->offset() + textOf(*last, text).size() : sequences.offset() + 1;
  const auto blanks = last ? indent(text, last->offset()) : "    ";
  std::string all;
  for (const auto& entry : added) {
    if (last || !all.empty()) all += ",";
    all.append(end).append(blanks).append(withLineEnds(entry, end));
  }
  edits.replace(at, 0, std::move(all));
}

}  // namespace

bool Update::bringsAnything() const {
  return std::ranges::any_of(changes, [](const Change& change) { return change.kind != Change::Kind::kept; });
}

std::string_view writtenIn(const Entry& entry, std::string_view text) {
  return textOf(entry.source, text);
}

const ShippedDocument* originOf(const Document& document) {
  const ShippedDocument* origin = nullptr;
  std::ptrdiff_t most = 0;
  for (const auto& shipped : shippedDocuments()) {
    const auto known = everShipped(shipped.name);
    const auto count = std::ranges::count_if(
        document.entries(), [&](const Entry& entry) { return known.contains(fingerprint(entry.source)); });
    if (count <= most) continue;
    most = count;
    origin = &shipped;
  }
  return origin;
}

std::optional<Update> update(const Document& document, std::string_view bytes,
                             const ShippedDocument& shipped) {
  auto text = bytes;
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  if (!text::isWellFormed(text) || text.find('\0') != std::string_view::npos) return std::nullopt;
  const auto mark = bytes.substr(0, bytes.size() - text.size());
  const auto known = everShipped(shipped.name);
  const auto firsts = firstEditions(shipped.name);
  const auto edition = editionOf(document, known);
  const auto own = firing(document);
  const Document current{std::string(shipped.bytes)};
  Update result;
  Edits edits;
  std::vector<std::string> added;
  for (const auto& [letters, entry] : firing(current)) {
    const auto print = fingerprint(entry->source);
    const auto mine = own.find(letters);
    const auto note = [&, each = entry](Change::Kind kind) {
      result.changes.push_back({kind, joined(each->letters), each->sequence.name});
    };
    if (mine == own.end()) {
      const auto first = firsts.find(joined(letters));
      if (first != firsts.end() && first->second <= edition) continue;
      note(Change::Kind::added);
      added.emplace_back(textOf(entry->source, shipped.bytes));
      continue;
    }
    const auto minePrint = fingerprint(mine->second->source);
    if (minePrint == print) continue;
    if (!known.contains(minePrint)) {
      note(Change::Kind::kept);
      continue;
    }
    note(Change::Kind::mended);
    const auto& source = mine->second->source;
    edits.replace(source.offset(), textOf(source, text).size(),
                  withLineEnds(textOf(entry->source, shipped.bytes), lineEnd(text)));
  }
  append(added, document, text, edits);
  result.bytes = std::string(mark) + edits.apply(text);
  return result;
}

}  // namespace keyvora::tools
