#include <array>
#include <utility>
#include <vector>

#include "mapping/document_keys.h"
#include "runner/key_names.h"
#include "runner/modifiers.h"
#include "text/ascii.h"
#include "text/text.h"
#include "tools/rules/elements.h"
#include "tools/rules/rules.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

using Alias = std::pair<std::string_view, std::string_view>;

/// Names that other systems use for keys and modifiers.
constexpr std::array keyAliases{
    Alias{"enter", "return"}, Alias{"esc", "escape"}, Alias{"spacebar", "space"}, Alias{" ", "space"},
    Alias{"\t", "tab"},       Alias{"plus", "="},     Alias{"minus", "-"},        Alias{"comma", ","},
    Alias{"period", "."},     Alias{"slash", "/"},    Alias{"backslash", "\\"},   Alias{"grave", "`"},
};
constexpr std::array modifierAliases{
    Alias{"⌘", "command"},     Alias{"⌥", "option"},      Alias{"⌃", "control"},  Alias{"⇧", "shift"},
    Alias{"apple", "command"}, Alias{"super", "command"}, Alias{"opt", "option"}, Alias{"ctl", "control"},
};
/// Keys that exist but that no action can press.
constexpr std::array absentKeys{
    std::string_view("delete"),   std::string_view("backspace"), std::string_view("up"),
    std::string_view("down"),     std::string_view("left"),      std::string_view("right"),
    std::string_view("home"),     std::string_view("end"),       std::string_view("pageup"),
    std::string_view("pagedown"),
};

template <class Table>
std::vector<std::string_view> namesOf(const Table& table) {
  std::vector<std::string_view> names;
  names.reserve(table.size());
  for (const auto& each : table) names.push_back(each.name);
  return names;
}

/// Names that may be misspelt. Names of function keys are left out, since only their number could be wrong.
std::vector<std::string_view> spelledNames() {
  auto names = namesOf(keyNames);
  std::erase_if(names, [](auto name) { return name.size() > 1 && text::isAsciiDigit(name[1]); });
  return names;
}

std::optional<std::string_view> suggestion(std::string_view word, std::span<const Alias> aliases,
                                           std::span<const std::string_view> names) {
  const auto written = text::lowerCased(word);
  for (const auto& [other, name] : aliases) {
    if (written == other) return name;
  }
  return nearest(word, names);
}

std::string adviceOnKey(std::string_view key) {
  const auto written = text::lowerCased(key);
  for (const auto absent : absentKeys) {
    if (written == absent) return "; no action can press it: use another kind of action";
  }
  if (const auto meant = suggestion(key, keyAliases, spelledNames())) {
    return "; did you mean " + inQuotes(*meant) + "?";
  }
  return "; there are letters, digits, US punctuation, space, return, tab, escape and f1 to f12";
}

}  // namespace

void unknownKeys(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::Keystroke>(&entry.sequence.action);
    if (action == nullptr || keyCodeFor(action->key)) continue;
    warn(findings, name, entry.actionValue(key::key), entry.actionPath(key::key),
         "no key is called " + inQuotes(action->key) + ", so the action fails" + adviceOnKey(action->key));
  }
}

void unknownModifiers(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::Keystroke>(&entry.sequence.action);
    if (action == nullptr || action->modifiers.empty()) continue;
    for (const auto& [element, path] : elementsOf(entry, key::modifiers)) {
      const auto modifier = element.text();
      if (modifierFlag(modifier)) continue;
      const auto meant = suggestion(modifier, modifierAliases, namesOf(modifierNames));
      warn(findings, name, element, path,
           "no modifier is called " + inQuotes(modifier) + ", so the key is pressed without it; " +
               (meant ? "did you mean " + inQuotes(*meant) + "?"
                      : "there are command, option, control and shift"));
    }
  }
}

}  // namespace keyvora::tools::rule
