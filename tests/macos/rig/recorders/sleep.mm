// Records the pauses between typed keys by their length, without a clock.

#include <unistd.h>

#include "tests/macos/rig/recorders/record.h"

extern "C" {
int __real_usleep(useconds_t microseconds);

/// Replaces the C library's function (by the linker's --wrap).
int __wrap_usleep(useconds_t microseconds) {
  keyvora::rig::record("usleep %u", microseconds);
  return __real_usleep(microseconds);
}
}
