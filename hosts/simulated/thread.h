#pragma once

#include <thread>

namespace keyvora::simulated {

/// The simulation's view of threads. Its main thread is the one that constructed it, except while that
/// thread runs work of a background queue: a main-thread operation called from there is fatal, as on a real
/// host.
class MainThread {
 public:
  [[nodiscard]] bool isCurrent() const {
    return std::this_thread::get_id() == thread_ && backgroundDepth == 0;
  }

  /// While it exists, the calling thread counts as a background thread (or, with `inBackground` false, as
  /// itself again).
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
