#pragma once

#include <cstddef>

/// The structures that clang writes for GNUstep's runtime 1.9 and that gcc's libobjc reads, field by field.
/// Comments mark the fields in which the two differ.
namespace keyvora::rig::abi {

struct Object;
struct Class;
struct Protocol;

/// A selector: its name and types in the compiler's output; registered with the runtime later.
struct Selector {
  const char* name;
  const char* types;
};
using SEL = const Selector*;
using Method = void (*)();

struct Object {
  Class* isa;
};

/// The target of a message to `super`.
struct Super {
  Object* self;
  Class* superclass;
};

struct MethodDescription {
  /// A name in the compiler's output; replaced by a registered selector.
  const void* name;
  const char* types;
};

struct MethodDescriptions {
  int count;
  MethodDescription list[1];
};

struct Protocols {
  Protocols* next;
  std::size_t count;
  Protocol* list[1];
};

struct Protocol {
  /// The number 3 in clang's output.
  void* isa;
  const char* name;
  Protocols* adopted;
  MethodDescriptions* instanceMethods;
  MethodDescriptions* classMethods;
  /// The fields from here on are clang's only.
  MethodDescriptions* optionalInstanceMethods;
  MethodDescriptions* optionalClassMethods;
};

struct Ivar {
  const char* name;
  const char* types;
  int offset;
};

struct Ivars {
  int count;
  Ivar list[1];
};

struct Class {
  Class* isa;
  /// The superclass's name until the runtime has resolved it.
  const char* superclass;
  const char* name;
  long version;
  unsigned long info;
  long instanceSize;
  Ivars* ivars;
  void* methods;
  void* dispatchTable;
  Class* subclasses;
  Class* siblings;
  Protocols* protocols;
  void* garbageCollection;
  /// The fields from here on are clang's only.
  long version2;
  int** ivarOffsets;
};

/// The number of words of a class that both define.
inline constexpr std::size_t classWords = 13;

struct Category {
  const char* name;
  const char* className;
  void* instanceMethods;
  void* classMethods;
  Protocols* protocols;
};

struct Symbols {
  unsigned long selectorCount;
  Selector* selectors;
  unsigned short classCount;
  unsigned short categoryCount;
  /// Classes, then categories, then the list of constant objects.
  void* definitions[1];
};

struct Module {
  unsigned long version;
  unsigned long size;
  const char* name;
  Symbols* symbols;
};

extern "C" {
void __objc_exec_class(Module* module);
Object* objc_getClass(const char* name);
std::size_t class_getInstanceSize(const Class* type);
SEL sel_registerTypedName(const char* name, const char* types);
SEL sel_registerName(const char* name);
const char* sel_getName(SEL selector);
Method objc_msg_lookup(Object* receiver, SEL selector);
Method objc_msg_lookup_super(Super* super, SEL selector);
}

/// Sends a message without arguments and returns its result.
inline Object* send(Object* receiver, const char* selector) {
  const SEL registered = sel_registerName(selector);
  return reinterpret_cast<Object* (*)(Object*, SEL)>(objc_msg_lookup(receiver, registered))(receiver,
                                                                                            registered);
}

}  // namespace keyvora::rig::abi
