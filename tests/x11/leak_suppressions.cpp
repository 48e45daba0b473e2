// What the leak sanitizer shall not report: the configuration that fontconfig keeps until the process ends.

extern "C" const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
