#include "tests/macos/rig/bridge/protocols.h"

#include <dlfcn.h>

#include <cstring>
#include <set>

namespace keyvora::rig::abi {
namespace {

constexpr std::size_t clangProtocol = 3;

/// The protocols written by clang. Those in the libraries lack the lists of optional methods.
std::set<const Protocol*>& ours() {
  static auto& protocols = *new std::set<const Protocol*>;
  return protocols;
}

void registerNames(MethodDescriptions* methods) {
  if (methods == nullptr) return;
  for (int index = 0; index < methods->count; ++index) {
    MethodDescription& method = methods->list[index];
    method.name = sel_registerTypedName(static_cast<const char*>(method.name), method.types);
  }
}

void adapt(Protocol& protocol) {
  if (reinterpret_cast<std::size_t>(protocol.isa) != clangProtocol) return;
  protocol.isa = objc_getClass("Protocol");
  ours().insert(&protocol);
  registerNames(protocol.instanceMethods);
  registerNames(protocol.classMethods);
  registerNames(protocol.optionalInstanceMethods);
  registerNames(protocol.optionalClassMethods);
  adaptProtocols(protocol.adopted);
}

MethodDescription find(const MethodDescriptions* methods, SEL selector) {
  const int count = methods == nullptr ? 0 : methods->count;
  for (int index = 0; index < count; ++index) {
    const MethodDescription& method = methods->list[index];
    if (std::strcmp(sel_getName(static_cast<SEL>(method.name)), sel_getName(selector)) == 0) return method;
  }
  return {};
}

const MethodDescriptions* listOf(const Protocol& protocol, bool required, bool instance) {
  if (required) return instance ? protocol.instanceMethods : protocol.classMethods;
  return instance ? protocol.optionalInstanceMethods : protocol.optionalClassMethods;
}

}  // namespace

void adaptProtocols(Protocols* protocols) {
  for (; protocols != nullptr; protocols = protocols->next) {
    for (std::size_t index = 0; index < protocols->count; ++index) adapt(*protocols->list[index]);
  }
}

/// Replaces the runtime's function, which does not know optional methods.
extern "C" MethodDescription protocol_getMethodDescription(const Protocol* protocol, SEL selector,
                                                           unsigned char required, unsigned char instance) {
  if (protocol == nullptr || selector == nullptr) return {};
  if (!ours().contains(protocol)) {
    using Function = MethodDescription (*)(const Protocol*, SEL, unsigned char, unsigned char);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "protocol_getMethodDescription"));
    return next(protocol, selector, required, instance);
  }
  MethodDescription found = find(listOf(*protocol, required != 0, instance != 0), selector);
  for (Protocols* adopted = protocol->adopted; found.name == nullptr && adopted != nullptr;
       adopted = adopted->next) {
    for (std::size_t index = 0; found.name == nullptr && index < adopted->count; ++index) {
      found = protocol_getMethodDescription(adopted->list[index], selector, required, instance);
    }
  }
  return found;
}

}  // namespace keyvora::rig::abi
