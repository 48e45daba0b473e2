#include "mapping/document_keys.h"
#include "text/text.h"
#include "tools/rules/elements.h"
#include "tools/rules/rules.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

constexpr std::string_view ellipsis = "\u2026";

/// What is suspicious about a title and how to correct it; empty when nothing is.
std::string doubt(std::string_view title) {
  if (title.empty()) return "is empty, and no menu has such a title; write the title as the menu shows it";
  const auto characters = text::characters(title);
  if (text::isWhiteSpace(characters.front()) || text::isWhiteSpace(characters.back())) {
    return inQuotes(title) + " begins or ends with a blank, and titles must match exactly; remove the blank";
  }
  if (title.find(ellipsis) != std::string_view::npos) {
    return inQuotes(title) +
           " holds the character \"\u2026\" (U+2026), and menus mostly write three full stops; " +
           "write \"...\" unless the menu has that very character";
  }
  return {};
}

}  // namespace

void emptyPaths(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::Menu>(&entry.sequence.action);
    if (action == nullptr || !action->path.empty()) continue;
    warn(findings, name, entry.actionValue(key::path), entry.actionPath(key::path),
         "an empty path presses the menu bar itself; write the titles from the menu bar down to the item");
  }
}

void menuTitles(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    if (!std::holds_alternative<action::Menu>(entry.sequence.action)) continue;
    for (const auto& [title, path] : elementsOf(entry, key::path)) {
      if (auto text = doubt(title.text()); !text.empty()) warn(findings, name, title, path, std::move(text));
    }
  }
}

}  // namespace keyvora::tools::rule
