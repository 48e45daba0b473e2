#include <string>

#include "mapping/document_keys.h"
#include "text/text.h"
#include "tools/apple_script.h"
#include "tools/rules/rules.h"

namespace keyvora::tools::rule {
namespace {

/// Whether a statement addresses the application that the script already runs in.
bool tellsTarget(const Statement& statement) {
  const bool tells =
      statement.code.starts_with("tell application ") || statement.code.starts_with("tell app ");
  if (!tells) return false;
  const auto written = text::lowerCased(statement.written);
  return written.find("\"microsoft excel\"") != std::string::npos ||
         written.find("\"com.microsoft.excel\"") != std::string::npos;
}

}  // namespace

void scriptBlocks(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::AppleScript>(&entry.sequence.action);
    if (action == nullptr) continue;
    auto fault = blockFault(action->script);
    if (fault.empty()) continue;
    warn(findings, name, entry.actionValue(key::script), entry.actionPath(key::script), std::move(fault));
  }
}

void scriptTells(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::AppleScript>(&entry.sequence.action);
    if (action == nullptr) continue;
    for (const auto& statement : statementsOf(action->script).all) {
      if (!tellsTarget(statement)) continue;
      warn(findings, name, entry.actionValue(key::script), entry.actionPath(key::script),
           "the script turns to Microsoft Excel in line " + std::to_string(statement.line) +
               ", and already runs inside such a block; leave its own \"tell application\" out");
      break;
    }
  }
}

}  // namespace keyvora::tools::rule
