#pragma once

#include "platform/main_loop.h"

namespace keyvora::macos {

/// The main run loop: NSTimer and the main dispatch queue.
class MainLoop final : public platform::MainLoop {
 public:
  [[nodiscard]] bool isMainThread() const override;
  std::unique_ptr<platform::Timer> schedule(platform::Seconds interval, bool repeats,
                                            platform::TimerMode mode, std::function<void()> block) override;
  void after(platform::Seconds delay, std::function<void()> block) override;
};

}  // namespace keyvora::macos
