#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "mapping/mapping.h"

/// How the tools put things into words.
namespace keyvora::tools {

/// In double quotes; control characters as escapes, so that it stays on one line.
std::string inQuotes(std::string_view text);

/// "1 sequence", "3 sequences".
std::string counted(std::size_t count, std::string_view noun);

/// "1.5 seconds", "1 second".
std::string inSeconds(std::chrono::milliseconds time);

/// The name of an action's kind, as documents write it.
std::string_view kindOf(const Action& action);

/// What an action does, in a few words on one line: `⇧⌘V`, `Format > Cells...`, `key tips H F C`, or the
/// first line of a script.
std::string summary(const Action& action);

/// A keystroke as Mac menus show it: `⌃⌥⇧⌘V`.
std::string shortcut(const action::Keystroke& keystroke);

/// What a document calls the tab that a sequence belongs to: the name under its first letter. None without.
std::optional<std::string> tabOf(const Sequence& sequence, const Mapping& mapping);

}  // namespace keyvora::tools
