#include "mapping/document_keys.h"
#include "tools/letters.h"
#include "tools/rules/rules.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {

void emptyKeys(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    if (!entry.letters.empty()) continue;
    warn(findings, name, entry.value(key::keys), entry.path(key::keys),
         "there is nothing to type, so this sequence never fires; write the letters that shall start it");
  }
}

void untypableLetters(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto letter = firstUntypable(entry.letters);
    if (!letter) continue;
    warn(findings, name, entry.value(key::keys), entry.path(key::keys),
         "no key produces " + inQuotes(*letter) +
             ", so this sequence never fires; use the letters A to Z and the digits 0 to 9");
  }
}

}  // namespace keyvora::tools::rule
