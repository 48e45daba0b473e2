#include "tools/commands.h"

namespace keyvora::tools {
namespace {

constexpr std::string_view usage = "usage: keyvora-mappings";

}  // namespace

std::string help() {
  std::string text = std::string(usage) +
                     " COMMAND [ARGUMENTS]\n\nChecks, explains and prints the key sequences of a mapping "
                     "document.\n\n";
  for (const auto& command : commands()) {
    text += "  " + std::string(command.name) + (command.arguments.empty() ? "" : " ") +
            std::string(command.arguments) + "\n      " + std::string(command.purpose) + "\n";
  }
  return text +
         "  help [COMMAND], --help\n      Say how to use the program, or one of its commands.\n"
         "  version, --version\n      Say the program's version.\n\n"
         "FILE is a mapping document, or - for the standard input. Without it the user's own is taken,\n"
         "~/Library/Application Support/keyvora/mappings.json, and where that does not exist yet, the one "
         "that\n"
         "keyvora would start with, which is said on the standard error.\n";
}

std::string help(const Command& command) {
  std::string text = std::string(usage) + " " + std::string(command.name);
  if (!command.arguments.empty()) text += " " + std::string(command.arguments);
  text += "\n\n" + std::string(command.purpose) + "\n";
  if (!command.details.empty()) text += "\n" + std::string(command.details);
  return text;
}

std::string complaint(std::string_view text) {
  return "keyvora-mappings: " + std::string(text) + "\n";
}

}  // namespace keyvora::tools
