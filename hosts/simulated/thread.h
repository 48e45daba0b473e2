#pragma once

#include <thread>

namespace keyvora::simulated {

/// The simulation's idea of threads. Its main thread is the one that made it, except while that thread stands
/// in for a background queue: what calls a main-thread operation from there is caught as on a real host.
class MainThread {
 public:
  [[nodiscard]] bool isCurrent() const {
    return std::this_thread::get_id() == thread_ && backgroundDepth == 0;
  }

  /// While it lives, the calling thread counts as one of a background queue (or, with `inBackground` false,
  /// as itself again).
  class Role {
   public:
    explicit Role(bool inBackground) : outer_(backgroundDepth) {
      backgroundDepth = inBackground ? backgroundDepth + 1 : 0;
    }
    ~Role() { backgroundDepth = outer_; }
    Role(const Role&) = delete;
    Role& operator=(const Role&) = delete;

   private:
    int outer_;
  };

 private:
  static inline thread_local int backgroundDepth = 0;
  std::thread::id thread_ = std::this_thread::get_id();
};

}  // namespace keyvora::simulated
