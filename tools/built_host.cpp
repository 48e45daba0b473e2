#include "tools/host.h"

namespace keyvora::tools {

HostMaker builtHost() {
  return platform::createHost;
}

}  // namespace keyvora::tools
