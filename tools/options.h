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

/// The options and operands that a command accepts.
struct Syntax {
  /// Options without a value, with their dashes.
  std::vector<std::string_view> switches;
  /// Options with a value: `--tab H` or `--tab=H`.
  std::vector<std::string_view> settings;
  /// The least and the greatest number of operands.
  std::size_t fewest = 0;
  std::size_t most = 0;
};

/// A parsed command line.
struct Options {
  std::set<std::string, std::less<>> switches;
  std::map<std::string, std::string, std::less<>> settings;
  std::vector<std::string> operands;

  [[nodiscard]] bool has(std::string_view name) const { return switches.contains(name); }
  [[nodiscard]] std::optional<std::string> setting(std::string_view name) const;
  [[nodiscard]] std::optional<std::string> operand(std::size_t index) const;
};

/// Parses the arguments after a command's name. Options and operands may be mixed; `--` ends the options.
/// On failure, returns an error message for the user.
std::variant<Options, std::string> parse(std::span<const std::string> arguments, const Syntax& syntax);

}  // namespace keyvora::tools
