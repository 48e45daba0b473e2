#include "platform/fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/platform.h"

namespace keyvora::platform {

void fatal(std::string_view message) {
  const std::string text = "Fatal error: " + std::string(message) + "\n";
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
  std::abort();
}

void trap() {
  __builtin_trap();
}

void requireMainThread(std::string_view what) {
  if (!current().mainLoop.isMainThread()) fatal(std::string(what) + " must run on the main thread");
}

}  // namespace keyvora::platform
