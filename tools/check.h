#pragma once

#include <string>
#include <string_view>

#include "tools/document.h"
#include "tools/finding.h"

namespace keyvora::tools {

/// All findings about a document, sorted by position: errors, which are the application's reasons to reject
/// it, and the warnings of all rules. There is an error exactly when the application would not load the
/// document.
Findings check(const Document& document);

/// Only the errors.
Findings errorsIn(const Document& document);

/// The findings for people, one per line: `file:line:column: error: path: text`.
std::string asText(const Findings& findings, std::string_view file);

/// The findings for programs: one JSON object on one line.
std::string asJson(const Findings& findings, std::string_view file);

}  // namespace keyvora::tools
