#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>

#include "hosts/posix/undumped.h"
#include "hosts/x11/tap/records.h"

namespace keyvora::x11 {

/// Events that wait for the handler, the oldest first. Allocates nothing after construction. An event is
/// cleared from memory when it is taken, and core dumps leave out the memory of those that wait.
class KeyQueue {
 public:
  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  [[nodiscard]] bool isFull() const { return count_ == capacity; }

  /// The queue must have room.
  void push(const TapRecord& record) {
    at(count_) = record;
    ++count_;
  }

  std::optional<TapRecord> take() {
    if (isEmpty()) return std::nullopt;
    const auto taken = at(0);
    explicit_bzero(&at(0), sizeof(TapRecord));
    first_ = (first_ + 1) % capacity;
    --count_;
    return taken;
  }

  /// The newest event; the queue must not be empty.
  TapRecord& last() { return at(count_ - 1); }

  void clear() {
    while (take()) {
    }
  }

  /// All of its memory, for tests.
  [[nodiscard]] const auto& memory() const { return *ring_; }

 private:
  static constexpr std::size_t capacity = 512;  // more than the tap sends without an answer

  TapRecord& at(std::size_t place) { return (*ring_)[(first_ + place) % capacity]; }

  posix::Undumped<std::array<TapRecord, capacity>> ring_;
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace keyvora::x11
