#include <algorithm>
#include <array>
#include <set>
#include <span>

#include "mapping/document_keys.h"
#include "text/text.h"
#include "tools/rules/rules.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

using Names = std::span<const std::string_view>;

/// Calls `visit(object, path, names)` for each object of the document format, with its known field names,
/// in document order.
template <class Visit>
void forEachObject(const Document& document, Visit visit) {
  const auto root = document.root();
  if (!root || root->type() != json::Type::object) return;
  visit(*root, CodingPath{}, Names(key::ofMapping));
  const auto sequences = root->find(key::sequences);
  if (!sequences) return;
  std::size_t index = 0;
  for (const auto sequence : sequences->elements()) {
    CodingPath path{std::string(key::sequences), index++};
    visit(sequence, path, Names(key::ofSequence));
    const auto action = sequence.find(key::action);
    if (!action) continue;
    path.emplace_back(std::string(key::action));
    visit(*action, path, Names(key::ofAction));
  }
}

CodingPath with(CodingPath path, std::string_view key) {
  path.emplace_back(std::string(key));
  return path;
}

}  // namespace

void misspeltFields(const Document& document, std::string_view name, Findings& findings) {
  forEachObject(document, [&](const json::Value& object, const CodingPath& path, Names names) {
    for (const auto& member : object.members()) {
      const auto field = member.key.text();
      if (std::ranges::any_of(names, [&](auto known) { return text::equal(known, field); })) continue;
      const auto meant = nearest(field, names);
      if (!meant) continue;  // a field of the user or of another program
      warn(findings, name, member.key, with(path, field),
           "no such field, so it is passed over; did you mean " + inQuotes(*meant) + "?");
    }
  });
}

void repeatedFields(const Document& document, std::string_view name, Findings& findings) {
  const auto check = [&](const json::Value& object, const CodingPath& path) {
    std::set<std::string> seen;
    for (const auto& member : object.members()) {
      if (seen.insert(text::canonical(member.key.text())).second) continue;
      warn(findings, name, member.key, with(path, member.key.text()),
           "stands here a second time, and the first one counts; remove one of the two");
    }
  };
  forEachObject(document,
                [&](const json::Value& object, const CodingPath& path, Names) { check(object, path); });
  if (const auto tabs = document.root() ? document.root()->find(key::tabs) : std::nullopt) {
    check(*tabs, {std::string(key::tabs)});
  }
}

}  // namespace keyvora::tools::rule
