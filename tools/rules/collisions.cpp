#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "mapping/document_keys.h"
#include "tools/letters.h"
#include "tools/rules/rules.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

/// Of several sequences with the same letters, the last one, which fires.
using ByLetters = std::map<std::vector<std::string>, const Entry*>;

ByLetters lastByLetters(const Document& document) {
  ByLetters last;
  for (const auto& entry : document.entries()) last[entry.letters] = &entry;
  return last;
}

/// The sequences that begin with the same letters and are longer: a range directly after the sequence in
/// the order of letters.
struct Longer {
  const Entry* first = nullptr;
  const Entry* firstTypable = nullptr;
  std::size_t count = 0;
};

Longer longerThan(ByLetters::const_iterator entry, const ByLetters& all) {
  Longer longer;
  const auto& start = entry->first;
  for (auto next = std::next(entry); next != all.end(); ++next) {
    const auto& letters = next->first;
    if (letters.size() < start.size() || !std::equal(start.begin(), start.end(), letters.begin())) break;
    if (longer.first == nullptr) longer.first = next->second;
    if (longer.firstTypable == nullptr && !firstUntypable(letters)) longer.firstTypable = next->second;
    ++longer.count;
  }
  return longer;
}

/// A field that only the check reads: it says that a wait is intended. keyvora ignores it.
constexpr std::string_view waits = "waits";

bool isMeant(const Entry& entry, const Longer& longer, std::chrono::milliseconds wait) {
  if (longer.firstTypable == nullptr || wait.count() <= 0) return false;  // impossible to use as intended
  const auto value = entry.source.find(waits);
  return value && value->type() == json::Type::boolean && value->text() == "true";
}

std::string waiting(const Entry& entry, const Longer& longer, std::chrono::milliseconds wait) {
  const auto& other = *(longer.firstTypable != nullptr ? longer.firstTypable : longer.first);
  std::string others = other.sequence.keys;
  if (longer.count > 1) others += " and " + counted(longer.count - 1, "other sequence");
  const std::string start = longer.count > 1 ? " start with it too" : " starts with it too";
  if (longer.firstTypable == nullptr) {
    return "waits " + inSeconds(wait) + " before it acts, because " + others + start +
           " and can never be typed to the end; correct the longer keys or remove them";
  }
  if (wait.count() <= 0) {
    return "leaves no time to type on to " + others + ", which" + start +
           ": the longer keys cannot be reached with this timeoutMilliseconds; raise it, or change the keys";
  }
  return "waits " + inSeconds(wait) + " before it acts, because " + others + start + "; give " +
         joined(entry.letters) +
         " or the longer keys another letter, or add \"waits\": true if that is meant";
}

}  // namespace

void repeatedSequences(const Document& document, std::string_view name, Findings& findings) {
  const auto last = lastByLetters(document);
  for (const auto& entry : document.entries()) {
    if (entry.letters.empty()) continue;
    const auto* firing = last.at(entry.letters);
    if (firing == &entry) continue;
    warn(findings, name, entry.value(key::keys), entry.path(key::keys),
         joined(entry.letters) + " stands again at line " +
             std::to_string(firing->value(key::keys).position().line) +
             ", and the last one counts: this one never fires; remove one of the two or change its keys");
  }
}

void waitingSequences(const Document& document, std::string_view name, Findings& findings) {
  const auto last = lastByLetters(document);
  const auto wait = document.mapping().timeout();
  for (auto each = last.begin(); each != last.end(); ++each) {
    const auto& entry = *each->second;
    if (entry.letters.empty() || firstUntypable(entry.letters)) continue;
    const auto longer = longerThan(each, last);
    if (longer.count == 0 || isMeant(entry, longer, wait)) continue;
    warn(findings, name, entry.value(key::keys), entry.path(key::keys), waiting(entry, longer, wait));
  }
}

}  // namespace keyvora::tools::rule
