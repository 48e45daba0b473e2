#include "tools/options.h"

#include <algorithm>

#include "tools/spelling.h"

namespace keyvora::tools {
namespace {

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

/// What is wrong with an option that the command does not have.
std::string unknown(const std::string& name, const Syntax& syntax) {
  auto names = syntax.switches;
  names.insert(names.end(), syntax.settings.begin(), syntax.settings.end());
  const auto meant = nearest(name, names);
  return "unknown option " + name + (meant ? " (did you mean " + std::string(*meant) + "?)" : "");
}

}  // namespace

std::optional<std::string> Options::setting(std::string_view name) const {
  const auto found = settings.find(name);
  return found == settings.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> Options::operand(std::size_t index) const {
  return index < operands.size() ? std::optional(operands[index]) : std::nullopt;
}

std::variant<Options, std::string> parse(std::span<const std::string> arguments, const Syntax& syntax) {
  Options options;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const auto& argument = arguments[i];
    if (optionsEnded || argument.size() < 2 || argument.front() != '-') {
      options.operands.push_back(argument);
      continue;
    }
    if (argument == "--") {
      optionsEnded = true;
      continue;
    }
    const auto equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    if (contains(syntax.switches, argument)) {
      options.switches.insert(argument);
    } else if (!contains(syntax.settings, name)) {
      return contains(syntax.switches, name) ? "option " + name + " takes no value" : unknown(name, syntax);
    } else if (equals != std::string::npos) {
      options.settings[name] = argument.substr(equals + 1);
    } else if (i + 1 < arguments.size()) {
      options.settings[name] = arguments[++i];
    } else {
      return "option " + name + " needs a value";
    }
  }
  if (options.operands.size() < syntax.fewest) return "an argument is missing";
  if (options.operands.size() > syntax.most) return "too many arguments: " + options.operands[syntax.most];
  return options;
}

}  // namespace keyvora::tools
