// Vnode sources on inotify. Breaking a documented rule of sources is a violation.

#import <dispatch/dispatch.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

using keyvora::rig::record;
using keyvora::rig::violation;

const struct dispatch_source_type_s {
} _dispatch_source_type_vnode;

@interface KVVnodeSource : NSObject <OS_dispatch_source> {
 @public
  std::mutex _mutex;
  int _descriptor;
  uintptr_t _mask;
  ino_t _inode;
  dispatch_queue_t _queue;
  dispatch_block_t _handler;
  dispatch_block_t _cancelHandler;
  uintptr_t _pending;
  BOOL _resumed;
  BOOL _cancelled;
}
- (void)happened:(uintptr_t)events;
- (void)resume;
- (void)cancel;
@end

namespace {

/// Which sources watch which file; several may share a watch.
struct Watches {
  std::mutex mutex;
  const int inotify = ::inotify_init1(IN_CLOEXEC);
  std::multimap<int, KVVnodeSource*> sources;
};

Watches& watches() {
  static auto& shared = *new Watches;
  return shared;
}

ino_t inodeOf(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 ? status.st_ino : 0;
}

bool isUnlinked(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

uintptr_t eventsOf(uint32_t mask, int descriptor) {
  uintptr_t events = 0;
  if ((mask & IN_MODIFY) != 0) events |= DISPATCH_VNODE_WRITE;
  if ((mask & IN_MOVE_SELF) != 0) events |= DISPATCH_VNODE_RENAME;
  if ((mask & IN_DELETE_SELF) != 0) events |= DISPATCH_VNODE_DELETE;
  if ((mask & IN_ATTRIB) != 0 && isUnlinked(descriptor)) events |= DISPATCH_VNODE_DELETE;
  return events;
}

void listen() {
  GSRegisterCurrentThread();
  alignas(inotify_event) char buffer[4096];
  while (true) {
    const ssize_t length = ::read(watches().inotify, buffer, sizeof buffer);
    for (ssize_t offset = 0; offset < length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
      const std::scoped_lock lock(watches().mutex);
      const auto [first, last] = watches().sources.equal_range(event->wd);
      for (auto entry = first; entry != last; ++entry) {
        [entry->second happened:eventsOf(event->mask, entry->second->_descriptor)];
      }
      offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
  }
}

void watch(KVVnodeSource* source) {
  [[maybe_unused]] static const bool listening = [] {
    std::thread(listen).detach();
    return true;
  }();
  const std::string path = "/proc/self/fd/" + std::to_string(source->_descriptor);
  const std::scoped_lock lock(watches().mutex);
  const int watch = ::inotify_add_watch(watches().inotify, path.c_str(),
                                        IN_MODIFY | IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB);
  watches().sources.emplace(watch, source);
}

void forget(KVVnodeSource* source) {
  const std::scoped_lock lock(watches().mutex);
  std::erase_if(watches().sources, [source](const auto& entry) { return entry.second == source; });
}

}  // namespace

@implementation KVVnodeSource
- (void)dealloc {
  if (!_resumed) violation("a dispatch source ended without being resumed");
  if (!_cancelled) violation("a dispatch source ended without being cancelled");
  forget(self);
  keyvora::rig::count("dispatch source", -1);
  if (_handler != nil) Block_release(_handler);
  if (_cancelHandler != nil) Block_release(_cancelHandler);
  [super dealloc];
}

/// Merges with events not handled yet.
- (void)happened:(uintptr_t)events {
  const std::scoped_lock lock(_mutex);
  events &= _mask;
  if (events == 0 || _cancelled || !_resumed) return;
  const BOOL queued = _pending != 0;
  _pending |= events;
  if (queued) return;
  [self retain];
  dispatch_async(_queue, ^{
    [self handle];
    [self release];
  });
}

- (void)handle {
  {
    const std::scoped_lock lock(_mutex);
    if (_cancelled) return;
    record("file event 0x%lx", (unsigned long)_pending);
    _pending = 0;
  }
  if (_handler != nil) _handler();
}

- (void)resume {
  if (_resumed) violation("a dispatch source resumed twice");
  _resumed = YES;
  record("file watch begun");
  watch(self);
}

- (void)cancel {
  {
    const std::scoped_lock lock(_mutex);
    if (_cancelled) return;
    _cancelled = YES;
  }
  record("file watch cancelled");
  forget(self);
  [self retain];
  dispatch_async(_queue, ^{
    [self finish];
    [self release];
  });
}

/// After this the descriptor may be reused for another file.
- (void)finish {
  if (_cancelHandler != nil) _cancelHandler();
  if (inodeOf(_descriptor) == _inode) violation("a watch's descriptor is open after its cancel handler");
  if (_handler != nil) Block_release(_handler);
  _handler = nil;
}
@end

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t mask,
                                         dispatch_queue_t queue) {
  if (keyvora::rig::fails("dispatch_source_create")) return nil;
  record("dispatch_source_create mask 0x%lx %s", (unsigned long)mask,
         queue == dispatch_get_main_queue() ? "on the main queue" : "elsewhere");
  auto* source = [[KVVnodeSource alloc] init];
  keyvora::rig::count("dispatch source", 1);
  source->_descriptor = static_cast<int>(handle);
  source->_mask = mask;
  source->_inode = inodeOf(source->_descriptor);
  source->_queue = [queue retain];
  return source;
}

void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
  ((KVVnodeSource*)source)->_handler = Block_copy(handler);
}

void dispatch_source_set_cancel_handler(dispatch_source_t source, dispatch_block_t handler) {
  ((KVVnodeSource*)source)->_cancelHandler = Block_copy(handler);
}

void dispatch_source_cancel(dispatch_source_t source) { [(KVVnodeSource*)source cancel]; }
void dispatch_resume(dispatch_object_t object) { [(KVVnodeSource*)object resume]; }
