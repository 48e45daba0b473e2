#include "tests/mapping/counting_new.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace keyvora::counting {
namespace {

Allocations allocations;
std::size_t inUse = 0;

/// Space before each block for its size, with the strictest alignment.
constexpr std::size_t header = alignof(std::max_align_t);

void* allocateOrNull(std::size_t size) noexcept {
  auto* block = static_cast<std::byte*>(std::malloc(size + header));
  if (block == nullptr) return nullptr;
  ::new (block) std::size_t(size);
  ++allocations.count;
  inUse += size;
  allocations.peakBytes = std::max(allocations.peakBytes, inUse);
  return block + header;
}

void* allocate(std::size_t size) {
  void* pointer = allocateOrNull(size);
  if (pointer == nullptr) throw std::bad_alloc();
  return pointer;
}

void release(void* pointer) noexcept {
  if (pointer == nullptr) return;
  auto* block = static_cast<std::byte*>(pointer) - header;
  const std::size_t size = *std::launder(reinterpret_cast<std::size_t*>(block));
  inUse -= std::min(inUse, size);
  std::free(block);
}

}  // namespace

void reset() {
  allocations = {};
  inUse = 0;
}

Allocations since() {
  return allocations;
}

}  // namespace keyvora::counting

// Clang declares these two only where it would call them itself.
void operator delete(void* pointer, std::size_t size) noexcept;
void operator delete[](void* pointer, std::size_t size) noexcept;

void* operator new(std::size_t size) {
  return keyvora::counting::allocate(size);
}
void* operator new[](std::size_t size) {
  return keyvora::counting::allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return keyvora::counting::allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return keyvora::counting::allocateOrNull(size);
}
void operator delete(void* pointer) noexcept {
  keyvora::counting::release(pointer);
}
void operator delete[](void* pointer) noexcept {
  keyvora::counting::release(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
  keyvora::counting::release(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
  keyvora::counting::release(pointer);
}
void operator delete(void* pointer, const std::nothrow_t&) noexcept {
  keyvora::counting::release(pointer);
}
void operator delete[](void* pointer, const std::nothrow_t&) noexcept {
  keyvora::counting::release(pointer);
}
