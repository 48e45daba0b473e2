#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "tools/document.h"

namespace keyvora::tools {

/// How often letters were typed, as keyvora's log tells it.
struct Habits {
  /// By the letters of sequences that were carried out, or failed.
  std::map<std::string, std::size_t> fired;
  /// By letters that led nowhere.
  std::map<std::string, std::size_t> vain;
};

/// Reads a log. It takes nothing from it but runs of letters that keys can type; other lines, whoever wrote
/// them, count for nothing.
Habits habitsIn(std::string_view log);

/// What is fired most, by the names of the document, and for each vain try what was meant, or an entry to
/// paste. Nothing of the log's text but the letters.
std::string asText(const Habits& habits, const Document& document);

}  // namespace keyvora::tools
