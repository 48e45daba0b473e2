#pragma once

#include <atomic>
#include <functional>
#include <memory>

namespace keyvora::platform {

namespace detail {
/// Unless `made` says that another thread has made the instance, makes it and keeps it for the current
/// scope.
void makeShared(const std::function<bool()>& made, const std::function<std::function<void()>()>& make);

template <class T>
inline std::atomic<T*> sharedSlot = nullptr;
}  // namespace detail

/// The one instance of T of the current scope. `make`, which returns a `std::unique_ptr<T>`, creates it on
/// first access, exactly once even when threads race. Later calls are one atomic load.
template <class T, class Make>
T& shared(Make make) {
  auto* slot = &detail::sharedSlot<T>;
  if (T* instance = slot->load(std::memory_order_acquire)) return *instance;
  detail::makeShared([slot] { return slot->load(std::memory_order_acquire) != nullptr; },
                     [slot, &make]() -> std::function<void()> {
                       T* instance = make().release();
                       slot->store(instance, std::memory_order_release);
                       return [slot, instance] {
                         slot->store(nullptr, std::memory_order_release);
                         delete instance;
                       };
                     });
  return *slot->load(std::memory_order_acquire);
}

}  // namespace keyvora::platform
