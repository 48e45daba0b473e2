#import "hosts/macos/queues.h"

#import <dispatch/dispatch.h>
#include <unistd.h>

#include "hosts/macos/guarded.h"

namespace keyvora::macos {
namespace {

class SerialQueue final : public platform::SerialQueue {
 public:
  explicit SerialQueue(const std::string& label) : queue_(dispatch_queue_create(label.c_str(), nullptr)) {}

  void async(std::function<void()> work) override {
    dispatch_async(queue_, ^{
      guarded([&] { work(); });
    });
  }

  bool drain(std::chrono::milliseconds limit) override {
    dispatch_semaphore_t done = dispatch_semaphore_create(0);
    dispatch_async(queue_, ^{
      dispatch_semaphore_signal(done);
    });
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(limit).count();
    return dispatch_semaphore_wait(done, dispatch_time(DISPATCH_TIME_NOW, nanoseconds)) == 0;
  }

 private:
  dispatch_queue_t queue_;
};

}  // namespace

std::unique_ptr<platform::SerialQueue> Queues::createSerial(const std::string& label) {
  return std::make_unique<SerialQueue>(label);
}

void Queues::walk(platform::Plan plan) {
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INTERACTIVE, 0), ^{
    for (const auto& step : plan) {
      const auto pause = guarded(std::chrono::microseconds{0}, [&step] { return step(); });
      if (pause.count() > 0) ::usleep(static_cast<useconds_t>(pause.count()));
    }
  });
}

}  // namespace keyvora::macos
