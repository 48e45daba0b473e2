#include <string_view>
#include <vector>

#include "app/process_entry.h"
#include "platform/host.h"

int main(int argc, char** argv) {
  const auto host = keyvora::platform::createHost();
  const keyvora::platform::Scope scope(host->platform());
  const std::vector<std::string_view> arguments(argv, argv + argc);
  const auto refused = keyvora::refuseStart(*host, arguments);
  const int status = refused ? *refused : keyvora::processEntry(arguments);
  // Ends the process without leaving the scope: another thread may still be typing key tips, and needs it.
  host->platform().process.exit(status);
  return status;
}
