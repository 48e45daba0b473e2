#include "hosts/posix/serial_queue.h"

#include <utility>

#include "hosts/posix/thread.h"

namespace keyvora::posix {

SerialQueue::SerialQueue(std::string label)
    : thread_([this, label = std::move(label)] {
        prepareThread(label);
        run();
      }) {}

SerialQueue::~SerialQueue() {
  {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
  }
  hasWork_.notify_one();
  thread_.join();
}

void SerialQueue::async(std::function<void()> work) {
  {
    const std::scoped_lock lock(mutex_);
    waiting_.push_back(std::move(work));
    ++submitted_;
  }
  hasWork_.notify_one();
}

bool SerialQueue::drain(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  return hasRun_.wait_for(lock, limit, [this, until = submitted_] { return ran_ >= until; });
}

void SerialQueue::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    hasWork_.wait(lock, [this] { return isStopping_ || !waiting_.empty(); });
    if (isStopping_) return;
    {
      const auto work = std::move(waiting_.front());
      waiting_.pop_front();
      lock.unlock();
      work();
    }
    lock.lock();
    ++ran_;
    hasRun_.notify_all();
  }
}

}  // namespace keyvora::posix
