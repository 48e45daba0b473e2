// Linked into a program that ends by _exit, in the coverage build: writes the coverage data first.

extern "C" {

// From GCC's runtime.
void __gcov_dump();
// The linker's names with --wrap=_exit: the C library's _exit, and the function that replaces it.
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status);

void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}
}
