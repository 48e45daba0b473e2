// Every object file with Objective-C registers its module with the runtime at program start. clang writes
// modules for a newer runtime than gcc's, so each is first rewritten in place.

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "tests/macos/rig/bridge/abi.h"
#include "tests/macos/rig/bridge/protocols.h"

namespace keyvora::rig::abi {
namespace {

constexpr unsigned long gccModuleVersion = 8;
constexpr unsigned long newAbiBit = 0x10;
constexpr long alignment = 16;

/// The rig's classes rewritten so far, with their instance sizes: the runtime may not know them yet.
std::map<std::string, long>& ourSizes() {
  static auto& sizes = *new std::map<std::string, long>;
  return sizes;
}

long sizeOf(const char* className) {
  if (className == nullptr) return 0;
  if (const auto ours = ourSizes().find(className); ours != ourSizes().end()) return ours->second;
  Object* known = objc_getClass(className);
  if (known == nullptr) std::abort();  // a class must be linked after its superclass
  return static_cast<long>(class_getInstanceSize(reinterpret_cast<Class*>(known)));
}

/// clang leaves the layout of instance variables to the runtime: offsets begin at 0, and the size is the
/// negated size of the class's own variables.
void layOut(Class& type) {
  if (type.instanceSize > 0) return;
  const long start = (sizeOf(type.superclass) + alignment - 1) / alignment * alignment;
  const int count = type.ivars == nullptr ? 0 : type.ivars->count;
  for (int index = 0; index < count; ++index) {
    type.ivars->list[index].offset += static_cast<int>(start);
    if (type.ivarOffsets != nullptr) *type.ivarOffsets[index] += static_cast<int>(start);
  }
  type.instanceSize = start - type.instanceSize;
  ourSizes()[type.name] = type.instanceSize;
}

void adapt(Class& type) {
  layOut(type);
  Class& meta = *type.isa;
  type.info &= ~newAbiBit;
  meta.info &= ~newAbiBit;
  if (meta.isa == nullptr) meta.isa = reinterpret_cast<Class*>(const_cast<char*>("NSObject"));
  if (meta.superclass == nullptr) meta.superclass = type.superclass;
  adaptProtocols(type.protocols);
  adaptProtocols(meta.protocols);
}

}  // namespace

extern "C" {
void __real___objc_exec_class(Module* module);

/// Replaces the runtime's function (by the linker's --wrap).
void __wrap___objc_exec_class(Module* module) {
  module->version = gccModuleVersion;
  module->size = sizeof(Module);
  Symbols& symbols = *module->symbols;
  for (int index = 0; index < symbols.classCount; ++index) {
    adapt(*static_cast<Class*>(symbols.definitions[index]));
  }
  for (int index = 0; index < symbols.categoryCount; ++index) {
    adaptProtocols(static_cast<Category*>(symbols.definitions[symbols.classCount + index])->protocols);
  }
  __real___objc_exec_class(module);
}
}

}  // namespace keyvora::rig::abi
