#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/queues.h"

namespace keyvora::posix {

/// Threads that walk plans: as many as there were plans at the same time, kept for later plans. If the
/// system gives no more threads, a plan waits for an existing one. The destructor ends every plan at its
/// next sleep and drops plans that have not begun.
class PlanWalkers {
 public:
  PlanWalkers() = default;
  ~PlanWalkers();
  PlanWalkers(const PlanWalkers&) = delete;
  PlanWalkers& operator=(const PlanWalkers&) = delete;

  /// Any thread.
  void walk(platform::Plan plan);

 private:
  void run();
  void walkAll(const platform::Plan& plan);
  /// False when the walkers are being stopped.
  bool sleepUntil(std::chrono::steady_clock::time_point moment);

  std::mutex mutex_;
  std::condition_variable hasPlan_;
  std::condition_variable stopped_;
  std::deque<platform::Plan> waiting_;
  std::size_t idle_ = 0;
  bool isStopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace keyvora::posix
