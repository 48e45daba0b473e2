#pragma once

#include <string>
#include <string_view>

#include "tools/document.h"
#include "tools/finding.h"

namespace keyvora::tools {

/// Everything that there is to say about a document: errors, which are the application's own reasons to
/// reject it, and the warnings of all rules, sorted by place. There is an error exactly when the application
/// would not load the document.
Findings check(const Document& document);

/// Its errors alone.
Findings errorsIn(const Document& document);

/// The findings for people, one a line: `file:line:column: error: path: text`.
std::string asText(const Findings& findings, std::string_view file);

/// The findings for programs: one JSON object on one line.
std::string asJson(const Findings& findings, std::string_view file);

}  // namespace keyvora::tools
