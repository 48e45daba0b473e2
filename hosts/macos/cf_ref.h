#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace keyvora::macos {

/// Owns one reference to a Core Foundation object and releases it. Any thread that the object allows.
template <class T>
class CFRef {
 public:
  CFRef() = default;
  /// Takes over a reference returned by a Create or Copy function; null is allowed.
  static CFRef adopt(T object) { return CFRef(object); }
  /// Retains a borrowed object; null is allowed.
  static CFRef retain(T object) {
    if (object != nullptr) CFRetain(object);
    return CFRef(object);
  }

  CFRef(CFRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  CFRef& operator=(CFRef&& other) noexcept {
    CFRef taken(std::move(other));
    std::swap(object_, taken.object_);
    return *this;
  }
  CFRef(const CFRef&) = delete;
  CFRef& operator=(const CFRef&) = delete;
  ~CFRef() {
    if (object_ != nullptr) CFRelease(object_);
  }

  [[nodiscard]] T get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  explicit CFRef(T object) : object_(object) {}

  T object_ = nullptr;
};

}  // namespace keyvora::macos
