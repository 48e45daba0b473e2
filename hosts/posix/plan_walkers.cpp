#include "hosts/posix/plan_walkers.h"

#include <system_error>
#include <utility>

#include "hosts/posix/thread.h"

namespace keyvora::posix {

PlanWalkers::~PlanWalkers() {
  {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
  }
  hasPlan_.notify_all();
  stopped_.notify_all();
  for (auto& thread : threads_) thread.join();
}

void PlanWalkers::walk(platform::Plan plan) {
  const std::scoped_lock lock(mutex_);
  waiting_.push_back(std::move(plan));
  if (waiting_.size() > idle_) {
    try {
      threads_.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
      // The plan waits for a thread that exists.
    }
  }
  hasPlan_.notify_one();
}

void PlanWalkers::run() {
  prepareThread("keyvora typing");
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    hasPlan_.wait(lock, [this] { return isStopping_ || !waiting_.empty(); });
    --idle_;
    if (isStopping_) return;
    {
      const auto plan = std::move(waiting_.front());
      waiting_.pop_front();
      lock.unlock();
      walkAll(plan);
    }
    lock.lock();
  }
}

void PlanWalkers::walkAll(const platform::Plan& plan) {
  for (const auto& step : plan) {
    const auto sleep = step();
    if (sleep.count() > 0 && !sleepUntil(std::chrono::steady_clock::now() + sleep)) return;
  }
}

bool PlanWalkers::sleepUntil(std::chrono::steady_clock::time_point moment) {
  std::unique_lock lock(mutex_);
  return !stopped_.wait_until(lock, moment, [this] { return isStopping_; });
}

}  // namespace keyvora::posix
