#import "hosts/macos/main_loop.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/guarded.h"

namespace keyvora::macos {
namespace {

class Timer final : public platform::Timer {
 public:
  explicit Timer(NSTimer* timer) : timer_(timer) {}
  ~Timer() override { [timer_ invalidate]; }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  void invalidate() override { [timer_ invalidate]; }

 private:
  NSTimer* timer_;
};

}  // namespace

bool MainLoop::isMainThread() const { return NSThread.isMainThread; }

std::unique_ptr<platform::Timer> MainLoop::schedule(platform::Seconds interval, bool repeats,
                                                    platform::TimerMode mode, std::function<void()> block) {
  @autoreleasepool {
    void (^fire)(NSTimer*) = ^(NSTimer*) {
      guarded([&] {
        // Invalidation inside the block releases the block; this copy keeps it alive until it returns.
        const auto running = block;
        running();
      });
    };
    if (mode == platform::TimerMode::defaultMode) {
      return std::make_unique<Timer>([NSTimer scheduledTimerWithTimeInterval:interval.count()
                                                                     repeats:repeats
                                                                       block:fire]);
    }
    NSTimer* timer = [NSTimer timerWithTimeInterval:interval.count() repeats:repeats block:fire];
    [NSRunLoop.currentRunLoop addTimer:timer forMode:NSRunLoopCommonModes];
    return std::make_unique<Timer>(timer);
  }
}

void MainLoop::after(platform::Seconds delay, std::function<void()> block) {
  const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(delay).count();
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), dispatch_get_main_queue(), ^{
    guarded([&] { block(); });
  });
}

}  // namespace keyvora::macos
