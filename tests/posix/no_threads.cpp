#include "tests/posix/no_threads.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>

namespace {

std::atomic<bool> refusing = false;
std::atomic<int> refusals = 0;

}  // namespace

// The C library's header has reserved names for the parameters.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* argument) noexcept {
  if (refusing) {
    ++refusals;
    return EAGAIN;
  }
  using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  return reinterpret_cast<Create*>(dlsym(RTLD_NEXT, "pthread_create"))(thread, attributes, run, argument);
}

namespace keyvora {

NoThreads::NoThreads() {
  refusals = 0;
  refusing = true;
}

NoThreads::~NoThreads() {
  refusing = false;
}

int NoThreads::refused() const {
  return refusals;
}

}  // namespace keyvora
