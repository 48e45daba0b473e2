#pragma once

#include <sys/mman.h>

#include <cstring>
#include <memory>
#include <type_traits>

#include "platform/fatal.h"

namespace keyvora::posix {

/// A value in its own memory that is left out of core dumps, for what a user typed. The destructor clears
/// it.
template <class Value>
class Undumped {
  static_assert(std::is_trivially_destructible_v<Value>);

 public:
  Undumped() {
    void* memory = mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) platform::fatal("no memory is left for keyboard events");
    madvise(memory, sizeof(Value), MADV_DONTDUMP);
    value_ = std::construct_at(static_cast<Value*>(memory));
  }
  ~Undumped() {
    explicit_bzero(value_, sizeof(Value));
    munmap(value_, sizeof(Value));
  }
  Undumped(const Undumped&) = delete;
  Undumped& operator=(const Undumped&) = delete;

  Value& operator*() { return *value_; }
  const Value& operator*() const { return *value_; }

 private:
  Value* value_;
};

}  // namespace keyvora::posix
