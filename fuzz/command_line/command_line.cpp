// The command line of keyvora-mappings, one line per argument, and after an empty line the document on its
// standard input. The program must end with one of its exit statuses, and print something whenever it
// fails. A command that succeeds only says which document it took, if the user has none.

#include <algorithm>
#include <sstream>
#include <vector>

#include "fuzz/input.h"
#include "tools/command.h"

namespace keyvora::fuzz {
namespace {

/// Excludes arguments that touch files or wait for changes: the only document is standard input.
bool isHarmless(const std::string& argument) {
  return argument.find('/') == argument.npos && argument.find('\0') == argument.npos && argument != "--watch";
}

void check(const std::string& text) {
  std::istringstream input(text);
  std::vector<std::string> arguments;
  for (std::string line; std::getline(input, line) && !line.empty();) {
    if (isHarmless(line)) arguments.push_back(line);
  }
  auto* const standardInput = std::cin.rdbuf(input.rdbuf());
  std::cin.clear();
  std::ostringstream out;
  std::ostringstream error;
  const int status = tools::run(arguments, {out, error});
  std::cin.rdbuf(standardInput);

  require(status == tools::exit_status::done || status == tools::exit_status::no ||
              status == tools::exit_status::failed,
          "one of the exit statuses");
  if (status != tools::exit_status::done)
    require(!out.str().empty() || !error.str().empty(), "a failure says why");
  const bool asked = std::ranges::find(arguments, "check") == arguments.begin();
  const bool saysWhich = error.str().starts_with("keyvora-mappings: you have no document yet; ") &&
                         std::ranges::count(error.str(), '\n') == 1;
  if (status == tools::exit_status::done && !asked)
    require(error.str().empty() || saysWhich, "success complains of nothing");
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  keyvora::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
