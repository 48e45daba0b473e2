#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace keyvora::tools {

/// What a command takes on its command line.
struct Syntax {
  /// Switches without a value, with their dashes.
  std::vector<std::string_view> switches;
  /// Options with a value: `--tab H` or `--tab=H`.
  std::vector<std::string_view> settings;
  /// How many operands there must and may be.
  std::size_t fewest = 0;
  std::size_t most = 0;
};

/// A command line, taken apart.
struct Options {
  std::set<std::string, std::less<>> switches;
  std::map<std::string, std::string, std::less<>> settings;
  std::vector<std::string> operands;

  [[nodiscard]] bool has(std::string_view name) const { return switches.contains(name); }
  [[nodiscard]] std::optional<std::string> setting(std::string_view name) const;
  [[nodiscard]] std::optional<std::string> operand(std::size_t index) const;
};

/// Takes the arguments behind a command's name apart; options and operands may mix, `--` ends the options. On
/// failure what is wrong with them, for a person.
std::variant<Options, std::string> parse(std::span<const std::string> arguments, const Syntax& syntax);

}  // namespace keyvora::tools
