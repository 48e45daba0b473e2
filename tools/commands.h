#pragma once

#include <span>
#include <string_view>

#include "tools/command.h"
#include "tools/options.h"

namespace keyvora::tools {

/// A command of the program: its arguments and its function.
struct Command {
  std::string_view name;
  /// The arguments, as the help shows them.
  std::string_view arguments;
  /// A sentence for the help.
  std::string_view purpose;
  /// The meaning of its options and exit statuses, in lines.
  std::string_view details;
  Syntax syntax;
  int (*carryOut)(const Options& options, const Streams& streams);
};

/// All commands, in the order of the help.
std::span<const Command> commands();

int checkCommand(const Options& options, const Streams& streams);
int explainCommand(const Options& options, const Streams& streams);
int listCommand(const Options& options, const Streams& streams);
int cheatsheetCommand(const Options& options, const Streams& streams);
int rehearseCommand(const Options& options, const Streams& streams);
int useCommand(const Options& options, const Streams& streams);
int diffCommand(const Options& options, const Streams& streams);
int updateCommand(const Options& options, const Streams& streams);
int habitsCommand(const Options& options, const Streams& streams);
int schemaCommand(const Options& options, const Streams& streams);
int doctorCommand(const Options& options, const Streams& streams);

/// The help for the program, and for one command.
std::string help();
std::string help(const Command& command);

/// An error message of the program.
std::string complaint(std::string_view text);

}  // namespace keyvora::tools
