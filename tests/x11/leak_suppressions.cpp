// What the leak sanitizer shall not report: the configuration that fontconfig keeps until the process ends,
// and the questions to a hung application that libdbus still keeps when libatspi has given up waiting.

#include <sanitizer/lsan_interface.h>

const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libdbus-1\n";
}
