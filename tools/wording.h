#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "mapping/mapping.h"

/// How the tools phrase their messages.
namespace keyvora::tools {

/// In double quotes, with control characters escaped, so that it stays on one line.
std::string inQuotes(std::string_view text);

/// "1 sequence", "3 sequences".
std::string counted(std::size_t count, std::string_view noun);

/// "1.5 seconds", "1 second".
std::string inSeconds(std::chrono::milliseconds time);

/// The name of an action's kind, as in documents.
std::string_view kindOf(const Action& action);

/// What an action does, in a few words on one line: `⇧⌘V`, `Format > Cells...`, `key tips H F C`, or the
/// first line of a script.
std::string summary(const Action& action);

/// A keystroke as Mac menus show it: `⌃⌥⇧⌘V`.
std::string shortcut(const action::Keystroke& keystroke);

/// The document's name for the tab of a sequence: the name under its first letter. None when it has none.
std::optional<std::string> tabOf(const Sequence& sequence, const Mapping& mapping);

}  // namespace keyvora::tools
