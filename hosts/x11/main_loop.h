#pragma once

#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

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

  class Timing;

 private:
  class Agenda;

  std::thread::id mainThread_ = std::this_thread::get_id();
  /// Shared with the timers, which may outlive the loop.
  std::shared_ptr<Timing> timing_;
  std::unique_ptr<Agenda> agenda_;
};

}  // namespace keyvora::x11
