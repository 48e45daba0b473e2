#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "hosts/simulated/world.h"
#include "platform/main_loop.h"

namespace keyvora::simulated {

/// The main loop on a virtual clock: nothing runs until `advance`.
class MainLoop final : public platform::MainLoop {
 public:
  explicit MainLoop(World& world) : world_(world) {}

  /// While true, a menu of the program is open: timers in the default mode wait, and run at the first
  /// `advance` after it was cleared.
  bool menuTracking = false;

  /// Advances the clock by `seconds` and runs what becomes due, in order of deadline and then of
  /// submission, each at its own time. Deadlines at the end of the span are included, and so are those
  /// added on the way. Main thread; may be nested, as a loop may.
  void advance(double seconds);

  /// Virtual time since the host was constructed. Any thread.
  [[nodiscard]] std::chrono::microseconds now() const { return std::chrono::microseconds(now_); }

  /// Timers and blocks that are still to run.
  [[nodiscard]] std::size_t pending() const;

  /// `after` for the simulation's own use: not counted, never failing.
  void enqueue(platform::Seconds delay, std::function<void()> block);

  [[nodiscard]] bool isMainThread() const override { return world_.mainThread.isCurrent(); }
  std::unique_ptr<platform::Timer> schedule(platform::Seconds interval, bool repeats,
                                            platform::TimerMode mode, std::function<void()> block) override;
  void after(platform::Seconds delay, std::function<void()> block) override;

 private:
  struct TimerState {
    bool valid = true;
    bool repeats = false;
    std::int64_t interval = 0;
    platform::TimerMode mode = platform::TimerMode::commonModes;
    std::function<void()> block;
  };
  class TimerHandle;

  /// A moment, and the number of the submission, which orders entries of the same moment.
  using Deadline = std::pair<std::int64_t, std::uint64_t>;
  struct Entry {
    std::shared_ptr<TimerState> timer;  // null for a plain block
    std::function<void()> block;
  };

  void add(std::int64_t moment, Entry entry);
  std::optional<std::pair<Deadline, Entry>> takeDue(std::int64_t until);
  void run(Deadline deadline, Entry entry);

  World& world_;
  std::atomic<std::int64_t> now_ = 0;  // microseconds
  mutable std::mutex mutex_;
  std::uint64_t submissions_ = 0;
  std::map<Deadline, Entry> entries_;
};

}  // namespace keyvora::simulated
