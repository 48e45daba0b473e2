// The pauses between what is typed, noted by their length: no clock is needed to see them.

#include <unistd.h>

#include "tests/macos/rig/recorders/record.h"

extern "C" {
int __real_usleep(useconds_t microseconds);

/// In the place of the C library's own (the linker's --wrap).
int __wrap_usleep(useconds_t microseconds) {
  keyvora::rig::record("usleep %u", microseconds);
  return __real_usleep(microseconds);
}
}
