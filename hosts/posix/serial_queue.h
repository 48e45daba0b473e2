#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "platform/queues.h"

namespace keyvora::posix {

/// A thread that runs what it is given, one piece after another, and sleeps in between. Destroying it drops
/// what has not begun, and waits for what has. Where the system has no thread to give, work waits for the
/// next piece or drain, which asks again.
class SerialQueue final : public platform::SerialQueue {
 public:
  explicit SerialQueue(std::string label);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void async(std::function<void()> work) override;

  /// Not from work of its own: that could only wait in vain.
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
