// Dispatch queues: the main queue on the run loop, serial queues on a thread each, the global queue with a
// thread for each block. Blocks run without an autorelease pool, so that a missing one is detected.

#include "tests/macos/rig/recorders/dispatch_queues.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/run_loop.h"

using keyvora::rig::record;

/// Runs blocks; the only implementation of `dispatch_queue_t`.
@interface KVQueue : NSObject <OS_dispatch_queue>
- (void)take:(dispatch_block_t)block;  // owns the block
@end

@implementation KVQueue
- (void)take:(dispatch_block_t)block {
}
@end

namespace {

/// How many serial queues have a thread.
std::atomic<int> serialThreads = 0;

void run(dispatch_block_t block) {
  block();
  Block_release(block);
}

/// Runs a thread's body. GNUstep must know the thread before its first message.
void runOnThread(const std::function<void()>& body) {
  GSRegisterCurrentThread();
  body();
  GSUnregisterCurrentThread();
}

}  // namespace

@interface KVSerialQueue : KVQueue {
  std::mutex _mutex;
  std::deque<dispatch_block_t> _blocks;
  BOOL _running;
}
@end

@implementation KVSerialQueue
- (instancetype)init {
  if ((self = [super init])) keyvora::rig::count("serial queue", 1);
  return self;
}
- (void)dealloc {
  keyvora::rig::count("serial queue", -1);
  [super dealloc];
}
- (void)take:(dispatch_block_t)block {
  const std::scoped_lock lock(_mutex);
  _blocks.push_back(block);
  if (_running) return;
  _running = YES;
  [self retain];  // the queue lives until its blocks have run
  ++serialThreads;
  std::thread([self] {
    runOnThread([self] { [self drain]; });
    --serialThreads;
  }).detach();
}
- (void)drain {
  while (true) {
    dispatch_block_t next;
    {
      const std::scoped_lock lock(_mutex);
      if (_blocks.empty()) {
        _running = NO;
        break;
      }
      next = _blocks.front();
      _blocks.pop_front();
    }
    run(next);
  }
  [self release];
}
@end

@interface KVGlobalQueue : KVQueue
@end

@implementation KVGlobalQueue
- (void)take:(dispatch_block_t)block {
  std::thread([block] { runOnThread([block] { run(block); }); }).detach();
}
@end

@interface KVMainQueue : KVQueue {
  std::mutex _mutex;
  std::deque<dispatch_block_t> _blocks;
  int _descriptor;
  BOOL _running;
}
@end

@implementation KVMainQueue
- (instancetype)init {
  if ((self = [super init])) {
    _descriptor = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    keyvora::rig::readInModes(_descriptor, keyvora::rig::commonModes(), [self] { [self drain]; });
  }
  return self;
}
- (void)take:(dispatch_block_t)block {
  {
    const std::scoped_lock lock(_mutex);
    _blocks.push_back(block);
  }
  [self signal];
}
- (void)signal {
  const uint64_t one = 1;
  static_cast<void>(!::write(_descriptor, &one, sizeof one));
}
- (void)drain {
  if (_running) return;  // one at a time, even in a nested loop
  uint64_t signals = 0;
  static_cast<void>(!::read(_descriptor, &signals, sizeof signals));
  _running = YES;
  while (true) {
    dispatch_block_t next;
    {
      const std::scoped_lock lock(_mutex);
      if (_blocks.empty()) break;
      next = _blocks.front();
      _blocks.pop_front();
    }
    run(next);
  }
  _running = NO;
}
@end

namespace keyvora::rig {
namespace {

KVMainQueue* mainQueue;

/// Delayed blocks, on one thread.
struct Later {
  std::mutex mutex;
  std::condition_variable changed;
  struct Entry {
    std::chrono::steady_clock::time_point due;
    KVQueue* queue;
    dispatch_block_t block;
  };
  std::deque<Entry> entries;
};

Later& later() {
  static auto& shared = *new Later;
  return shared;
}

void runLater() {
  std::unique_lock lock(later().mutex);
  while (true) {
    auto& entries = later().entries;
    auto next = std::min_element(entries.begin(), entries.end(),
                                 [](const auto& one, const auto& other) { return one.due < other.due; });
    if (next == entries.end()) {
      later().changed.wait(lock);
    } else if (next->due > std::chrono::steady_clock::now()) {
      later().changed.wait_until(lock, next->due);
    } else {
      const auto entry = *next;
      entries.erase(next);
      lock.unlock();
      [entry.queue take:entry.block];
      lock.lock();
    }
  }
}

}  // namespace

void beginMainQueue() {
  mainQueue = [[KVMainQueue alloc] init];
  std::thread([] { runOnThread(runLater); }).detach();
}

void runMainQueue() { [mainQueue drain]; }

void waitForSerialQueues() {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (serialThreads > 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace keyvora::rig

dispatch_queue_attr_t _dispatch_queue_attr_concurrent = @"concurrent";

dispatch_queue_t dispatch_get_main_queue() { return keyvora::rig::mainQueue; }

dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags) {
  static auto* queue = [[KVGlobalQueue alloc] init];
  record("global queue 0x%lx flags %lu", (unsigned long)identifier, (unsigned long)flags);
  return queue;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
  record("dispatch_queue_create %s %s", label, attributes == nil ? "serial" : "concurrent");
  if (attributes != nil) return [[KVGlobalQueue alloc] init];
  return [[KVSerialQueue alloc] init];
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  [(KVQueue*)queue take:Block_copy(block)];
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto start =
      when == DISPATCH_TIME_NOW ? std::chrono::nanoseconds(now).count() : static_cast<int64_t>(when);
  return static_cast<dispatch_time_t>(start + delta);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
  const std::chrono::steady_clock::time_point due{std::chrono::nanoseconds(when)};
  const std::chrono::duration<double> delay = due - std::chrono::steady_clock::now();
  record("dispatch_after %.2f s", delay.count());
  auto& shared = keyvora::rig::later();
  const std::scoped_lock lock(shared.mutex);
  shared.entries.push_back({due, [(KVQueue*)queue retain], Block_copy(block)});
  shared.changed.notify_one();
}

@interface KVSemaphore : NSObject <OS_dispatch_semaphore> {
 @public
  std::mutex _mutex;
  std::condition_variable _signalled;
  intptr_t _value;
  intptr_t _original;
}
@end

@implementation KVSemaphore
- (void)dealloc {
  if (_value < _original) keyvora::rig::violation("a semaphore ended with a lower value than it began with");
  keyvora::rig::count("semaphore", -1);
  [super dealloc];
}
@end

dispatch_semaphore_t dispatch_semaphore_create(intptr_t value) {
  auto* semaphore = [[KVSemaphore alloc] init];
  keyvora::rig::count("semaphore", 1);
  semaphore->_value = semaphore->_original = value;
  return semaphore;
}

intptr_t dispatch_semaphore_signal(dispatch_semaphore_t object) {
  auto* semaphore = (KVSemaphore*)object;
  const std::scoped_lock lock(semaphore->_mutex);
  ++semaphore->_value;
  semaphore->_signalled.notify_one();
  return 0;
}

intptr_t dispatch_semaphore_wait(dispatch_semaphore_t object, dispatch_time_t timeout) {
  auto* semaphore = (KVSemaphore*)object;
  const std::chrono::steady_clock::time_point due{std::chrono::nanoseconds(timeout)};
  std::unique_lock lock(semaphore->_mutex);
  if (!semaphore->_signalled.wait_until(lock, due, [&] { return semaphore->_value > 0; })) return 1;
  --semaphore->_value;
  return 0;
}
