#include <string_view>
#include <vector>

#include "app/process_entry.h"
#include "platform/host.h"

int main(int argc, char** argv) {
  const auto host = keyvora::platform::createHost();
  const keyvora::platform::Scope scope(host->platform());
  const std::vector<std::string_view> arguments(argv, argv + argc);
  return keyvora::processEntry(arguments);
}
