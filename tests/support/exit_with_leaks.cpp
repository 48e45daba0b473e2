// Linked into a program that ends by _exit, in builds with the address sanitizer: checks for leaks first. A
// leak is reported on standard error and changes the exit status.

#include <sanitizer/lsan_interface.h>

extern "C" {

// The linker's names with --wrap=_exit: the C library's _exit, and the function that replaces it.
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status);

void __wrap__exit(int status) {
  __lsan_do_leak_check();
  __real__exit(status);
}
}
