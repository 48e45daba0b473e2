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
  /// What the document calls the tab; empty when it does not say.
  std::string name;
  std::vector<SheetRow> rows;
};

/// The sequences of a document that can fire, in document order, by the tabs that their first letters stand
/// for, in the order in which the tabs first come up.
std::vector<SheetTab> sheetOf(const Mapping& mapping);

/// Leaves out every sequence that does not start with these letters, and the tabs that are empty then.
void keepStartingWith(std::vector<SheetTab>& sheet, const std::vector<std::string>& prefix);

/// The sheet for a terminal: a line for each sequence, in columns.
std::string asTable(const std::vector<SheetTab>& sheet);

/// The sheet as one HTML file that needs nothing else, for the screen and for paper.
std::string asHtml(const std::vector<SheetTab>& sheet);

/// The sheet as Markdown tables.
std::string asMarkdown(const std::vector<SheetTab>& sheet);

}  // namespace keyvora::tools
