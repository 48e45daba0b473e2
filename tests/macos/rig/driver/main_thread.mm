#include "tests/macos/rig/driver/main_thread.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <deque>
#include <future>
#include <memory>
#include <mutex>

#include "tests/macos/rig/recorders/run_loop.h"

namespace keyvora::rig {
namespace {

struct Waiting {
  const int descriptor = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC | EFD_SEMAPHORE);
  std::mutex mutex;
  std::deque<std::function<void()>> work;
};

Waiting& waiting() {
  static auto& shared = *new Waiting;
  return shared;
}

void runNext() {
  uint64_t one = 0;
  if (::read(waiting().descriptor, &one, sizeof one) < 0) return;
  std::function<void()> next;
  {
    const std::scoped_lock lock(waiting().mutex);
    if (waiting().work.empty()) return;
    next = std::move(waiting().work.front());
    waiting().work.pop_front();
  }
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  next();
  [pool release];
}

}  // namespace

void beginMainThread() { readInModes(waiting().descriptor, commonModes(), runNext); }

void onMain(std::function<void()> work, bool waitForEnd) {
  auto reached = std::make_shared<std::promise<void>>();
  auto future = reached->get_future();
  {
    const std::scoped_lock lock(waiting().mutex);
    waiting().work.push_back([work = std::move(work), reached, waitForEnd] {
      if (!waitForEnd) reached->set_value();
      work();
      if (waitForEnd) reached->set_value();
    });
  }
  const uint64_t one = 1;
  static_cast<void>(!::write(waiting().descriptor, &one, sizeof one));
  future.wait();
}

}  // namespace keyvora::rig
