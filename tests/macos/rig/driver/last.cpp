// Linked last: constructors run in link order, and one of each object file registers its classes.

#include "tests/macos/rig/driver/start.h"

namespace {

__attribute__((constructor)) void startWhenAllIsKnown() {
  keyvora::rig::start();
}

}  // namespace
