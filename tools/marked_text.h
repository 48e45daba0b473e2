#pragma once

#include <string>
#include <string_view>

#include "tools/finding.h"

namespace keyvora::tools {

/// The findings for a terminal: each with its line of the document and a caret below the position, in
/// colours if wanted. Lines are cut around the position; control characters are shown as replacement
/// characters.
std::string asMarkedText(const Findings& findings, std::string_view file, std::string_view bytes,
                         bool colours);

}  // namespace keyvora::tools
