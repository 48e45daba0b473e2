// Linked last: constructors run in the order of linking, and each object file's classes are made known by
// one.

#include "tests/macos/rig/driver/start.h"

namespace {

__attribute__((constructor)) void startWhenAllIsKnown() {
  keyvora::rig::start();
}

}  // namespace
