#include "tools/host.h"

namespace keyvora::tools {

HostMaker builtHost() {
  return nullptr;
}

}  // namespace keyvora::tools
