// GNUstep throws through gcc's runtime, whose exceptions are foreign to C++. clang's frames use a
// personality function of their own. This one passes C++ exceptions on unchanged, and presents each
// Objective-C exception to C++'s personality function as a C++ exception that carries the object.

#include <cxxabi.h>
#include <unwind.h>

#include <cstdint>
#include <typeinfo>

#include "tests/macos/rig/bridge/abi.h"

namespace gnustep::libobjc {

/// The type of every thrown object, and of `catch (id)`.
class __objc_id_type_info : public std::type_info {
 public:
  __objc_id_type_info() : std::type_info("id") {}
  ~__objc_id_type_info() override;
  [[nodiscard]] bool __is_pointer_p() const override { return true; }
  bool __do_catch(const std::type_info* thrown, void** object, unsigned outer) const override;
};

/// The type that clang writes for `catch (NSException*)`; its name is the class's.
class __objc_class_type_info : public std::type_info {
 public:
  ~__objc_class_type_info() override;
  [[nodiscard]] bool __is_pointer_p() const override { return true; }
  bool __do_catch(const std::type_info* thrown, void** object, unsigned outer) const override;

 private:
  using std::type_info::type_info;
};

__objc_id_type_info::~__objc_id_type_info() = default;
__objc_class_type_info::~__objc_class_type_info() = default;

}  // namespace gnustep::libobjc

extern "C" {
/// Referred to by clang's tables.
gnustep::libobjc::__objc_id_type_info __objc_id_type_info;
}

namespace gnustep::libobjc {

bool __objc_id_type_info::__do_catch(const std::type_info* thrown, void** /*object*/,
                                     unsigned /*outer*/) const {
  return thrown == &::__objc_id_type_info;
}

bool __objc_class_type_info::__do_catch(const std::type_info* thrown, void** object,
                                        unsigned /*outer*/) const {
  using namespace keyvora::rig::abi;
  if (thrown != &::__objc_id_type_info) return false;
  Object* type = objc_getClass(name());
  auto* instance = static_cast<Object*>(*object);
  const SEL selector = sel_registerName("isKindOfClass:");
  using Function = unsigned char (*)(Object*, SEL, Object*);
  return reinterpret_cast<Function>(objc_msg_lookup(instance, selector))(instance, selector, type) != 0;
}

}  // namespace gnustep::libobjc

namespace __cxxabiv1 {
struct __cxa_refcounted_exception;
extern "C" __cxa_refcounted_exception* __cxa_init_primary_exception(void* object, std::type_info* type,
                                                                    void (*destructor)(void*)) noexcept;
extern "C" _Unwind_Reason_Code __gxx_personality_v0(int version, _Unwind_Action actions,
                                                    _Unwind_Exception_Class exceptionClass,
                                                    _Unwind_Exception* exception, _Unwind_Context* context);
}  // namespace __cxxabiv1

namespace keyvora::rig::abi {
namespace {

constexpr _Unwind_Exception_Class objectiveC = 0x474e55434f424a43;  // "GNUCOBJC"

/// The thrown object is stored after the header.
Object* objectOf(_Unwind_Exception* exception) {
  return *reinterpret_cast<Object**>(exception + 1);
}

/// The C++ exception that replaces an Objective-C one while this thread unwinds: both of the unwinder's
/// phases must see the same.
struct OnItsWay {
  _Unwind_Exception* original = nullptr;
  Object* object = nullptr;
  _Unwind_Exception* standIn = nullptr;
};
thread_local OnItsWay onItsWay;

_Unwind_Exception* standInFor(_Unwind_Exception* original) {
  Object* object = objectOf(original);
  if (onItsWay.original != original || onItsWay.object != object) {
    void* carried = __cxxabiv1::__cxa_allocate_exception(sizeof(Object*));
    *static_cast<Object**>(carried) = object;
    __cxxabiv1::__cxa_init_primary_exception(carried, &::__objc_id_type_info, nullptr);
    auto* header = static_cast<_Unwind_Exception*>(carried) - 1;
    header->exception_class = 0x474e5543432b2b00;  // "GNUCC++\0"
    onItsWay = {original, object, header};
  }
  return onItsWay.standIn;
}

}  // namespace

extern "C" _Unwind_Reason_Code __gnustep_objcxx_personality_v0(int version, _Unwind_Action actions,
                                                               _Unwind_Exception_Class exceptionClass,
                                                               _Unwind_Exception* exception,
                                                               _Unwind_Context* context) {
  if (exceptionClass != objectiveC) {
    return __cxxabiv1::__gxx_personality_v0(version, actions, exceptionClass, exception, context);
  }
  _Unwind_Exception* standIn = standInFor(exception);
  const auto result =
      __cxxabiv1::__gxx_personality_v0(version, actions, standIn->exception_class, standIn, context);
  if (result == _URC_INSTALL_CONTEXT) {
    if ((actions & _UA_HANDLER_FRAME) != 0) {
      onItsWay = {};  // caught: C++ now owns the replacement
    } else {
      // A clean-up: unwinding continues with the original exception, which holds the unwinder's state.
      _Unwind_SetGR(context, __builtin_eh_return_data_regno(0), reinterpret_cast<_Unwind_Word>(exception));
    }
  }
  return result;
}

}  // namespace keyvora::rig::abi
