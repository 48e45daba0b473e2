#include "hosts/posix/serial_queue.h"

#include <system_error>
#include <utility>

#include "hosts/posix/thread.h"

namespace keyvora::posix {

SerialQueue::SerialQueue(std::string label) : label_(std::move(label)) {
  const std::scoped_lock lock(mutex_);
  start();
}

SerialQueue::~SerialQueue() {
  {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
  }
  hasWork_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void SerialQueue::async(std::function<void()> work) {
  {
    const std::scoped_lock lock(mutex_);
    waiting_.push_back(std::move(work));
    ++submitted_;
    start();
  }
  hasWork_.notify_one();
}

bool SerialQueue::drain(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  if (!start()) return ran_ == submitted_;
  return hasRun_.wait_for(lock, limit, [this, until = submitted_] { return ran_ >= until; });
}

/// Starts the thread if there is none; false if there is none afterwards. Called under the lock.
bool SerialQueue::start() {
  if (thread_.joinable()) return true;
  try {
    thread_ = std::thread([this] {
      prepareThread(label_);
      run();
    });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
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
