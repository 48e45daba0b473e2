#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "tools/document.h"

namespace keyvora::tools {

/// How often letters were typed, according to keyvora's log.
struct Habits {
  /// By the letters of sequences that were carried out or failed.
  std::map<std::string, std::size_t> fired;
  /// By letters that matched no sequence.
  std::map<std::string, std::size_t> vain;
};

/// Reads a log. Takes nothing from it except letters that keys can type; other lines are ignored.
Habits habitsIn(std::string_view log);

/// The sequences fired most often, with their names in the document; and for each failed attempt the
/// sequence that was probably meant, or an entry to paste. Of the log's text only letters are shown.
std::string asText(const Habits& habits, const Document& document);

}  // namespace keyvora::tools
