// Leaks that must not be reported: the configuration that fontconfig keeps until the end of the process,
// and pending calls to a hung application that libdbus keeps after libatspi gave up.

#include <sanitizer/lsan_interface.h>

const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libdbus-1\n";
}
