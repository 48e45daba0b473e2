// clang expects a slot that contains a method, where gcc's runtime returns the method itself.

#include <mutex>
#include <unordered_map>

#include "tests/macos/rig/bridge/abi.h"

namespace keyvora::rig::abi {
namespace {

struct Slot {
  Class* owner;
  Class* cachedFor;
  const char* types;
  int version;
  Method method;
};

/// The slot of a method. Compiled code may keep it, so it is never freed or changed.
Slot* slotOf(Method method) {
  // Never destroyed: the main thread sends messages until the end of the process.
  thread_local auto& near = *new std::unordered_map<Method, Slot*>;
  if (const auto found = near.find(method); found != near.end()) return found->second;
  static auto& mutex = *new std::mutex;
  static auto& slots = *new std::unordered_map<Method, Slot*>;
  const std::scoped_lock lock(mutex);
  Slot*& slot = slots[method];
  if (slot == nullptr) slot = new Slot{nullptr, nullptr, nullptr, 0, method};
  near[method] = slot;
  return slot;
}

}  // namespace

extern "C" {

Slot* objc_msg_lookup_sender(Object** receiver, SEL selector, Object* /*sender*/) {
  return slotOf(objc_msg_lookup(*receiver, selector));
}

Slot* objc_slot_lookup_super(Super* super, SEL selector) {
  return slotOf(objc_msg_lookup_super(super, selector));
}
}

}  // namespace keyvora::rig::abi
