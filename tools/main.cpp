#include <iostream>
#include <string>
#include <vector>

#include "tools/command.h"

int main(int argc, char** argv) {
  using namespace keyvora::tools;
  std::ios::sync_with_stdio(false);
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = run(arguments, {std::cout, std::cerr, builtHost()});
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "keyvora-mappings: the output could not be written\n";
    return exit_status::failed;
  }
  return status;
}
