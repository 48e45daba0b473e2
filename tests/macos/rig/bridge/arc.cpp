// The functions that clang calls for reference counting, implemented by ordinary messages.

#include <dlfcn.h>

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

/// Protocol objects are not NSObjects and are never freed.
bool isCounted(const Object* object) {
  static const auto* protocol = reinterpret_cast<Class*>(objc_getClass("Protocol"));
  return object != nullptr && object->isa != protocol;
}

/// Weak references use GNUstep's implementation, in the versions that have one (1.31 and later). In others,
/// using them must fail loudly.
void* weak(const char* call, void* place, void* other) {
  using Function = void* (*)(void*, void*);
  const auto library = reinterpret_cast<Function>(dlsym(RTLD_NEXT, call));
  if (library != nullptr) return library(place, other);
  std::fprintf(stderr, "%s: this GNUstep has no weak references\n", call);
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

void* objc_initWeak(void* place, void* object) {
  return weak("objc_initWeak", place, object);
}
void* objc_storeWeak(void* place, void* object) {
  return weak("objc_storeWeak", place, object);
}
void* objc_loadWeakRetained(void* place) {
  return weak("objc_loadWeakRetained", place, nullptr);
}
void objc_destroyWeak(void* place) {
  weak("objc_destroyWeak", place, nullptr);
}
void objc_copyWeak(void* to, void* from) {
  weak("objc_copyWeak", to, from);
}
void objc_moveWeak(void* to, void* from) {
  weak("objc_moveWeak", to, from);
}
}

}  // namespace keyvora::rig::abi
