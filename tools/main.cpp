#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/command.h"

namespace {

/// None when colours are disabled (NO_COLOR, https://no-color.org) or the terminal does not support them.
std::optional<keyvora::tools::Terminal> terminal() {
  if (isatty(STDOUT_FILENO) == 0) return std::nullopt;
  const char* unwanted = std::getenv("NO_COLOR");
  const char* kind = std::getenv("TERM");
  const bool knowsNone = kind == nullptr || std::string_view(kind) == "dumb";
  return keyvora::tools::Terminal{(unwanted == nullptr || *unwanted == '\0') && !knowsNone};
}

}  // namespace

int main(int argc, char** argv) {
  using namespace keyvora::tools;
  std::ios::sync_with_stdio(false);
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = run(arguments, {std::cout, std::cerr, builtHost(), terminal()});
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "keyvora-mappings: the output could not be written\n";
    return exit_status::failed;
  }
  return status;
}
