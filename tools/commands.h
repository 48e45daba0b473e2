#pragma once

#include <span>
#include <string_view>

#include "tools/command.h"
#include "tools/options.h"

namespace keyvora::tools {

/// A command of the program: what it takes and what carries it out.
struct Command {
  std::string_view name;
  /// What follows the name: for the help.
  std::string_view arguments;
  /// What it does, in one sentence.
  std::string_view purpose;
  /// What its options and exit statuses mean; lines.
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

/// What the program tells about itself, and about one command.
std::string help();
std::string help(const Command& command);

/// A message of the program's own.
std::string complaint(std::string_view text);

}  // namespace keyvora::tools
