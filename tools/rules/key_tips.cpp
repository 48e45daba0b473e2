#include <algorithm>
#include <sstream>

#include "mapping/document_keys.h"
#include "runner/key_names.h"
#include "runner/key_plan.h"
#include "text/text.h"
#include "tools/rules/rules.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

/// The first word of the text that is the name of a key with several letters; empty when there is none.
std::string spelledKey(const std::string& keys) {
  std::istringstream words(text::lowerCased(keys));
  for (std::string word; words >> word;) {
    const auto isName = [&](const KeyName& key) { return key.name.size() > 1 && key.name == word; };
    if (std::ranges::any_of(keyNames, isName)) return word;
  }
  return {};
}

}  // namespace

void untypableKeyTips(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::KeyTips>(&entry.sequence.action);
    if (action == nullptr) continue;
    const auto character = firstWithoutKey(keyPlan(action->keys));
    if (!character) continue;
    warn(findings, name, entry.actionValue(key::keys), entry.actionPath(key::keys),
         "no key types " + inQuotes(*character) +
             ", so nothing at all is typed; use letters, digits and US punctuation");
  }
}

void spelledKeys(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::KeyTips>(&entry.sequence.action);
    if (action == nullptr) continue;
    const auto word = spelledKey(action->keys);
    if (word.empty()) continue;
    warn(findings, name, entry.actionValue(key::keys), entry.actionPath(key::keys),
         inQuotes(word) +
             " is typed letter by letter, not as the key of that name; to press one key, use an " +
             "action of kind \"keystroke\"");
  }
}

}  // namespace keyvora::tools::rule
