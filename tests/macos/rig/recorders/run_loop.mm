// Core Foundation's run loop on NSRunLoop: a source is a file descriptor that the loop waits for.

#include "tests/macos/rig/recorders/run_loop.h"

#import <AppKit/AppKit.h>
#import <CoreFoundation/CoreFoundation.h>

#include <map>

#include "tests/macos/rig/recorders/cf_object.h"
#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/window_server.h"

const CFRunLoopMode kCFRunLoopDefaultMode = (CFRunLoopMode) @"kCFRunLoopDefaultMode";
const CFRunLoopMode kCFRunLoopCommonModes = (CFRunLoopMode) @"kCFRunLoopCommonModes";

@interface KVDescriptorWatcher : NSObject <RunLoopEvents> {
 @public
  std::function<void()> _readable;
}
@end

@implementation KVDescriptorWatcher
- (void)receivedEvent:(void*)data type:(RunLoopEventType)type extra:(void*)extra forMode:(NSString*)mode {
  self->_readable();
}
@end

namespace keyvora::rig {
namespace {

struct Reading {
  KVDescriptorWatcher* watcher;
  NSArray* modes;
};

std::map<int, Reading>& readings() {
  static auto& shared = *new std::map<int, Reading>;
  return shared;
}

/// A run-loop source of a tap's port.
class Source final : public CFObject {
 public:
  static constexpr auto name = "run-loop source";

  explicit Source(Tap& tap) : CFObject(name), tap_(tap) { tap_.retain(); }

  [[nodiscard]] CFTypeID type() const override { return type_id::other; }
  [[nodiscard]] Tap& tap() const { return tap_; }

  bool added = false;

 private:
  void ended() override { tap_.release(); }

  Tap& tap_;
};

bool isCommon(CFRunLoopMode mode) { return mode == kCFRunLoopCommonModes; }

NSArray* modesOf(CFRunLoopMode mode) {
  if (isCommon(mode)) return commonModes();
  if (mode == kCFRunLoopDefaultMode) return @[ NSDefaultRunLoopMode ];
  return @[ (NSString*)mode ];
}

}  // namespace

NSArray* commonModes() {
  return @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ];
}

void readInModes(int descriptor, NSArray* modes, std::function<void()> readable) {
  auto* watcher = [[KVDescriptorWatcher alloc] init];
  watcher->_readable = std::move(readable);
  readings()[descriptor] = {watcher, [modes retain]};
  for (NSString* mode in modes) {
    [NSRunLoop.currentRunLoop addEvent:(void*)(intptr_t)descriptor
                                  type:ET_RDESC
                               watcher:watcher
                               forMode:mode];
  }
}

void stopReading(int descriptor) {
  const auto found = readings().find(descriptor);
  if (found == readings().end()) return;
  for (NSString* mode in found->second.modes) {
    [NSRunLoop.currentRunLoop removeEvent:(void*)(intptr_t)descriptor type:ET_RDESC forMode:mode all:YES];
  }
  readings().erase(found);  // the watcher stays: it may be running
}

}  // namespace keyvora::rig

using keyvora::rig::Source;
using keyvora::rig::use;

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                 CFIndex order) {
  keyvora::rig::record("CFMachPortCreateRunLoopSource order %ld", order);
  auto* tap = use<keyvora::rig::Tap>(port, "CFMachPortCreateRunLoopSource");
  if (tap == nullptr || keyvora::rig::fails("CFMachPortCreateRunLoopSource")) return nullptr;
  return reinterpret_cast<CFRunLoopSourceRef>(new Source(*tap));
}

CFRunLoopRef CFRunLoopGetMain() { return reinterpret_cast<CFRunLoopRef>(&keyvora::rig::readings()); }

void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  keyvora::rig::requireMainThread("CFRunLoopAddSource");
  keyvora::rig::record("CFRunLoopAddSource %s", [(NSString*)mode UTF8String]);
  auto* found = use<Source>(source, "CFRunLoopAddSource");
  if (found == nullptr || found->added) return;
  found->added = true;
  found->retain();
  auto& tap = found->tap();
  keyvora::rig::readInModes(tap.descriptor(), keyvora::rig::modesOf(mode), [&tap] { tap.deliver(); });
}

void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  keyvora::rig::requireMainThread("CFRunLoopRemoveSource");
  keyvora::rig::record("CFRunLoopRemoveSource %s", [(NSString*)mode UTF8String]);
  auto* found = use<Source>(source, "CFRunLoopRemoveSource");
  if (found == nullptr || !found->added) return;
  found->added = false;
  keyvora::rig::stopReading(found->tap().descriptor());
  found->release();
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean) {
  NSString* name = mode == kCFRunLoopDefaultMode ? NSDefaultRunLoopMode : (NSString*)mode;
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  [NSRunLoop.currentRunLoop runMode:name beforeDate:[NSDate dateWithTimeIntervalSinceNow:seconds]];
  [pool release];
  return 0;
}

CFAbsoluteTime CFAbsoluteTimeGetCurrent() { return [NSDate timeIntervalSinceReferenceDate]; }
