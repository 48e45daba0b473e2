#include "tools/command.h"

#include <algorithm>
#include <csignal>
#include <variant>
#include <vector>

#include "tools/commands.h"
#include "tools/embedded.h"
#include "tools/spelling.h"

namespace keyvora::tools {
namespace {

const Command* find(std::string_view name) {
  const auto all = commands();
  const auto found = std::ranges::find(all, name, &Command::name);
  return found == all.end() ? nullptr : &*found;
}

int unknown(const std::string& name, const Streams& streams) {
  std::vector<std::string_view> names{"help", "version"};
  for (const auto& command : commands()) names.push_back(command.name);
  const auto meant = nearest(name, names);
  streams.error << complaint(
      "unknown command " + name + "; " +
      (meant ? "did you mean " + std::string(*meant) + "?" : "try: keyvora-mappings help"));
  return exit_status::failed;
}

int helpWith(std::span<const std::string> topics, const Streams& streams) {
  if (topics.empty()) {
    streams.out << help();
    return exit_status::done;
  }
  const auto* command = find(topics.front());
  if (command == nullptr) return unknown(topics.front(), streams);
  streams.out << help(*command);
  return exit_status::done;
}

}  // namespace

int run(std::span<const std::string> arguments, const Streams& streams) {
  // A program that ignores SIGCHLD passes that on to the programs that it starts, and those would not be told
  // how their children ended.
  std::signal(SIGCHLD, SIG_DFL);
  if (arguments.empty()) {
    streams.error << help();
    return exit_status::failed;
  }
  const auto& name = arguments.front();
  const auto rest = arguments.subspan(1);
  if (name == "help" || name == "--help" || name == "-h") return helpWith(rest, streams);
  if (name == "version" || name == "--version") {
    streams.out << "keyvora-mappings " << embedded::version << "\n";
    return exit_status::done;
  }
  const auto* command = find(name);
  if (command == nullptr) return unknown(name, streams);
  if (std::ranges::any_of(rest, [](const auto& each) { return each == "--help" || each == "-h"; })) {
    streams.out << help(*command);
    return exit_status::done;
  }
  const auto parsed = parse(rest, command->syntax);
  if (const auto* fault = std::get_if<std::string>(&parsed)) {
    streams.error << complaint(*fault + "; try: keyvora-mappings help " + name);
    return exit_status::failed;
  }
  return command->carryOut(std::get<Options>(parsed), streams);
}

}  // namespace keyvora::tools
