#pragma once

#include <string>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// A line of a cheat sheet.
struct SheetRow {
  std::vector<std::string> letters;
  std::string name;
  /// What the action does, in a few words.
  std::string summary;
  /// The name of the action's kind.
  std::string kind;
};

/// The sequences of one tab.
struct SheetTab {
  /// The first letter of its sequences.
  std::string letter;
  /// The document's name for the tab; empty when it has none.
  std::string name;
  std::vector<SheetRow> rows;
};

/// The document's sequences that can fire, in document order, grouped by the tabs of their first letters;
/// tabs are in the order of their first occurrence.
std::vector<SheetTab> sheetOf(const Mapping& mapping);

/// Removes every sequence that does not start with these letters, and the tabs without sequences.
void keepStartingWith(std::vector<SheetTab>& sheet, const std::vector<std::string>& prefix);

/// The sheet for a terminal: a line for each sequence, in columns.
std::string asTable(const std::vector<SheetTab>& sheet);

/// The sheet as one self-contained HTML file, for the screen and for print.
std::string asHtml(const std::vector<SheetTab>& sheet);

/// The sheet as Markdown tables.
std::string asMarkdown(const std::vector<SheetTab>& sheet);

}  // namespace keyvora::tools
