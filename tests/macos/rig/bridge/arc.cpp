// What clang calls to count references, each by way of the ordinary message.

#include <cstdio>
#include <cstdlib>

#include "tests/macos/rig/bridge/abi.h"
#include "tests/macos/rig/bridge/blocks.h"

extern "C" {
void* _Block_copy(const void* block);
void _Block_release(const void* block);
}

namespace keyvora::rig::abi {
namespace {

/// Protocol objects are no NSObject, and live for ever.
bool isCounted(const Object* object) {
  static const auto* protocol = reinterpret_cast<Class*>(objc_getClass("Protocol"));
  return object != nullptr && object->isa != protocol;
}

/// Weak references are not bridged: a use of one must not pass in silence.
[[noreturn]] void noWeakReferences() {
  std::fputs("the bridge has no weak references\n", stderr);
  std::abort();
}

}  // namespace

extern "C" {

Object* objc_retain(Object* object) {
  if (!isCounted(object)) return object;
  return isBlock(object) ? static_cast<Object*>(_Block_copy(object)) : send(object, "retain");
}

void objc_release(Object* object) {
  if (!isCounted(object)) return;
  isBlock(object) ? _Block_release(object) : static_cast<void>(send(object, "release"));
}

Object* objc_autorelease(Object* object) {
  return isCounted(object) ? send(object, "autorelease") : object;
}

Object* objc_retainBlock(Object* block) {
  return block == nullptr ? nullptr : static_cast<Object*>(_Block_copy(block));
}

void objc_storeStrong(Object** place, Object* object) {
  Object* old = *place;
  *place = objc_retain(object);
  objc_release(old);
}

Object* objc_retainAutorelease(Object* object) {
  return objc_autorelease(objc_retain(object));
}
Object* objc_retainAutoreleaseReturnValue(Object* object) {
  return objc_autorelease(objc_retain(object));
}
Object* objc_autoreleaseReturnValue(Object* object) {
  return objc_autorelease(object);
}
Object* objc_retainAutoreleasedReturnValue(Object* object) {
  return objc_retain(object);
}

void* objc_autoreleasePoolPush() {
  return send(send(objc_getClass("NSAutoreleasePool"), "alloc"), "init");
}
void objc_autoreleasePoolPop(void* pool) {
  send(static_cast<Object*>(pool), "release");
}

void objc_initWeak() {
  noWeakReferences();
}
void objc_storeWeak() {
  noWeakReferences();
}
void objc_loadWeakRetained() {
  noWeakReferences();
}
void objc_destroyWeak() {
  noWeakReferences();
}
void objc_copyWeak() {
  noWeakReferences();
}
void objc_moveWeak() {
  noWeakReferences();
}
}

}  // namespace keyvora::rig::abi
