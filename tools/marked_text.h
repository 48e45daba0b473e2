#pragma once

#include <string>
#include <string_view>

#include "tools/finding.h"

namespace keyvora::tools {

/// The findings for someone at a terminal: each with the line of the document that it is about and a caret
/// below the place, in colours when they are wanted. Lines are cut to what is near the place; what a terminal
/// would take for a command is shown as a replacement character.
std::string asMarkedText(const Findings& findings, std::string_view file, std::string_view bytes,
                         bool colours);

}  // namespace keyvora::tools
