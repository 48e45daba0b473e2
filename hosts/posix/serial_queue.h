#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "platform/queues.h"

namespace keyvora::posix {

/// A thread that runs pieces of work one after another. The destructor drops work that has not begun and
/// waits for the piece that is running. If the system gives no thread, work waits for the next `async` or
/// `drain`, which try again.
class SerialQueue final : public platform::SerialQueue {
 public:
  explicit SerialQueue(std::string label);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void async(std::function<void()> work) override;

  /// Must not be called from this queue's own work, which would wait for itself.
  bool drain(std::chrono::milliseconds limit) override;

 private:
  bool start();
  void run();

  std::string label_;
  std::mutex mutex_;
  std::condition_variable hasWork_;
  std::condition_variable hasRun_;
  std::deque<std::function<void()>> waiting_;
  std::uint64_t submitted_ = 0;
  std::uint64_t ran_ = 0;
  bool isStopping_ = false;
  std::thread thread_;
};

}  // namespace keyvora::posix
