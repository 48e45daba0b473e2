// Leaks as many blocks as its argument says, then ends by _exit, as keyvora does.

#include <unistd.h>

#include <cstddef>
#include <cstdlib>

namespace {

constexpr std::size_t size = 64;

// Keeps no copy of the block's address that the leak sanitizer would find.
[[gnu::noinline]] void lose() {
  auto* block = static_cast<volatile char*>(std::malloc(size));
  if (block != nullptr) block[0] = 'x';
}

// Overwrites what lose() left on the stack.
[[gnu::noinline]] void clearStack() {
  volatile char overwritten[4096];
  for (auto& byte : overwritten) byte = 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 0;
  for (int i = 0; i < count * 100; ++i) lose();  // many, since one may still be in a register
  clearStack();
  _exit(0);
}
