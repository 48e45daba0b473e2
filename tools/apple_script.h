#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The part of AppleScript's grammar that is needed to check that a script's blocks match.
namespace keyvora::tools {

/// A statement: its line with continuation lines, without comments.
struct Statement {
  /// The line it starts on, counted from 1.
  std::size_t line = 1;
  /// As written.
  std::string written;
  /// In lower case, the contents of string literals blanked out, words separated by single blanks.
  std::string code;
};

struct Statements {
  std::vector<Statement> all;
  /// What is not closed at the end of the script: "", or "text" or "comment", and the line where it began.
  std::string_view open;
  std::size_t openLine = 0;
};

/// Splits a script into statements. Accepts any text.
Statements statementsOf(std::string_view script);

/// The first block of a script that does not match, and what to do; empty when all match.
std::string blockFault(std::string_view script);

}  // namespace keyvora::tools
