#include "tests/macos/rig/bridge/blocks.h"

#include <dlfcn.h>

#include <cstring>
#include <initializer_list>

#include "tests/macos/rig/bridge/abi.h"

extern "C" {
extern void* _NSConcreteStackBlock[];
extern void* _NSConcreteMallocBlock[];
extern void* _NSConcreteGlobalBlock[];
keyvora::rig::abi::Object* objc_retain(keyvora::rig::abi::Object* object);
void objc_release(keyvora::rig::abi::Object* object);
}

namespace keyvora::rig::abi {
namespace {

/// The kind of a captured field, as the compiler passes it to the library.
constexpr int fieldKinds = 0x1f;
constexpr int objectField = 3;

}  // namespace

bool isBlock(const Object* object) {
  const void* isa = object->isa;
  return isa == _NSConcreteMallocBlock || isa == _NSConcreteStackBlock || isa == _NSConcreteGlobalBlock;
}

void fillBlockClasses(Object* model) {
  send(model, "self");  // a class's methods are installed at its first message
  for (void** type : {_NSConcreteStackBlock, _NSConcreteMallocBlock, _NSConcreteGlobalBlock}) {
    std::memcpy(type, model, classWords * sizeof(void*));
  }
}

extern "C" {

/// Replaces the library's function, which does not retain captured objects.
void _Block_object_assign(void* destination, const void* object, const int flags) {
  if ((flags & fieldKinds) == objectField) {
    *static_cast<Object**>(destination) = objc_retain(static_cast<Object*>(const_cast<void*>(object)));
    return;
  }
  static const auto next =
      reinterpret_cast<decltype(&_Block_object_assign)>(dlsym(RTLD_NEXT, "_Block_object_assign"));
  next(destination, object, flags);
}

void _Block_object_dispose(const void* object, const int flags) {
  if ((flags & fieldKinds) == objectField) {
    objc_release(static_cast<Object*>(const_cast<void*>(object)));
    return;
  }
  static const auto next =
      reinterpret_cast<decltype(&_Block_object_dispose)>(dlsym(RTLD_NEXT, "_Block_object_dispose"));
  next(object, flags);
}
}

}  // namespace keyvora::rig::abi
