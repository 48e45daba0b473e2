#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "hosts/x11/loop/agenda.h"
#include "hosts/x11/loop/loop_wait.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// GLib's default main context as the main loop. The thread that constructs it is the main thread.
class MainLoop final : public platform::MainLoop {
 public:
  MainLoop();
  ~MainLoop() override;
  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;

  [[nodiscard]] bool isMainThread() const override;
  std::unique_ptr<platform::Timer> schedule(platform::Seconds interval, bool repeats,
                                            platform::TimerMode mode, std::function<void()> block) override;
  void after(platform::Seconds delay, std::function<void()> block) override;

  /// A menu of keyvora is open: timers in the default mode wait until it has closed. Main thread.
  void beginTracking();
  void endTracking();

  /// For work that takes no turn of the loop.
  LoopWait& wait() { return wait_; }

  class Timing;

 private:
  /// Shared with the timers, which may outlive the loop.
  std::shared_ptr<Timing> timing_;
  Agenda agenda_;
  LoopWait wait_;
};

}  // namespace keyvora::x11
