#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// As much of AppleScript's grammar as it takes to see whether a script's blocks fit together.
namespace keyvora::tools {

/// A statement: its line with the lines that continue it, without comments.
struct Statement {
  /// The line it starts on, counted from 1.
  std::size_t line = 1;
  /// As written.
  std::string written;
  /// In small letters, the contents of its texts blanked out, its words one blank apart.
  std::string code;
};

struct Statements {
  std::vector<Statement> all;
  /// What the end of the script leaves open: "", or "text" or "comment" and the line where it began.
  std::string_view open;
  std::size_t openLine = 0;
};

/// Takes a script apart. Accepts anything.
Statements statementsOf(std::string_view script);

/// The first thing that does not fit together in a script, and what to do; empty when everything does.
std::string blockFault(std::string_view script);

}  // namespace keyvora::tools
