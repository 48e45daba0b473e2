#include "mapping/document_keys.h"
#include "tools/rules/rules.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {

void emptyNames(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    if (!trimmed(entry.sequence.name).empty()) continue;
    warn(findings, name, entry.value(key::name), entry.path(key::name),
         "is empty, and it is what the log and the cheat sheet show; say in a few words what the sequence "
         "does");
  }
}

void otherVersions(const Document& document, std::string_view name, Findings& findings) {
  constexpr std::string_view only = "1";
  const auto root = document.root();
  if (!root || root->type() != json::Type::object) return;
  const auto version = root->find(key::version);
  if (!version || version->type() != json::Type::number || version->text() == only) return;
  if (version->text().find_first_of(".eE") != std::string_view::npos) return;  // reported as an error
  warn(findings, name, *version, {std::string(key::version)},
       "there is no version " + std::string(version->text()) + " of the format; write 1");
}

}  // namespace keyvora::tools::rule
