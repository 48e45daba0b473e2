#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/queues.h"

namespace keyvora::simulated {

namespace detail {
class HeldWork;
}

/// Background queues without threads. Work on a serial queue runs at once, inside `async`, unless the
/// queues are held; a plan is walked on the virtual clock, or at once. To the program, both appear to run
/// off the main thread.
class Queues final : public platform::Queues {
 public:
  Queues(World& world, MainLoop& loop);
  ~Queues() override;

  /// How plans are walked.
  enum class Walking {
    /// Each step at its time during `advance`, starting with the next `advance`; plans interleave.
    onTheClock,
    /// All steps inside `walk`: no time passes, and the sleeps are only recorded.
    inLine,
  };
  Walking walking = Walking::onTheClock;

  /// Work submitted to serial queues from now on waits, as on a slow disk. Any thread.
  void hold();

  /// Runs all waiting work, each queue in its order, and stops holding. Any thread.
  void release();

  /// The labels of the serial queues that were made, in order.
  [[nodiscard]] std::vector<std::string> labels() const;

  /// The limit of each `drain` so far, in order. Any thread.
  [[nodiscard]] std::vector<std::chrono::milliseconds> drainLimits() const;

  std::unique_ptr<platform::SerialQueue> createSerial(const std::string& label) override;
  void walk(platform::Plan plan) override;

 private:
  class Serial;

  void step(const std::shared_ptr<const platform::Plan>& plan, std::size_t index);
  std::chrono::microseconds runStep(const platform::PlanStep& step);

  World& world_;
  MainLoop& loop_;
  std::shared_ptr<detail::HeldWork> held_;
  mutable std::mutex mutex_;
  std::vector<std::string> labels_;
};

}  // namespace keyvora::simulated
