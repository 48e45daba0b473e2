#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>

namespace keyvora::rig {

/// A Core Foundation object of the rig, created with one reference. Its memory is never freed, so that a
/// use after its end, one release too many and one too few are all detected.
class CFObject {
 public:
  CFObject(const CFObject&) = delete;
  CFObject& operator=(const CFObject&) = delete;

  void retain();
  void release();
  [[nodiscard]] int references() const { return references_; }
  [[nodiscard]] const char* kind() const { return kind_; }
  [[nodiscard]] virtual CFTypeID type() const = 0;

  /// The object behind a reference, if it is the rig's; null for Foundation objects.
  static CFObject* find(CFTypeRef object);

 protected:
  /// `kind` is a string literal, which identifies the kind of object in the counts.
  explicit CFObject(const char* kind);
  virtual ~CFObject() = default;

 private:
  /// Called when the last reference was released.
  virtual void ended() {}

  const char* kind_;
  std::atomic<int> references_ = 1;
};

/// Core Foundation's type numbers; any distinct values will do.
namespace type_id {
inline constexpr CFTypeID other = 1;
inline constexpr CFTypeID string = 7;
inline constexpr CFTypeID array = 19;
inline constexpr CFTypeID element = 40;
}  // namespace type_id

void useFailed(const char* call, const char* expected, const CFObject* found);

/// The object as a `T`, for a call named `call`. A reference to another object, or to one that has ended,
/// is a violation and returns null.
template <class T>
T* use(const void* reference, const char* call) {
  CFObject* found = CFObject::find(reference);
  T* object = dynamic_cast<T*>(found);
  if (object == nullptr || object->references() < 1) {
    useFailed(call, T::name, found);
    return nullptr;
  }
  return object;
}

}  // namespace keyvora::rig
