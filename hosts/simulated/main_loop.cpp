#include "hosts/simulated/main_loop.h"

#include <algorithm>
#include <cmath>

namespace keyvora::simulated {
namespace {

/// A moment that no test reaches, and far from overflow.
constexpr double farFuture = 4e18;
/// A repeating timer without an interval would stop virtual time: it gets 0.1 ms, as in real run loops.
constexpr std::int64_t shortestRepeat = 100;

std::int64_t microseconds(platform::Seconds span) {
  return std::llround(std::clamp(span.count() * 1e6, 0.0, farFuture));
}

}  // namespace

class MainLoop::TimerHandle final : public platform::Timer {
 public:
  explicit TimerHandle(std::shared_ptr<TimerState> state) : state_(std::move(state)) {}
  ~TimerHandle() override { state_->valid = false; }

  void invalidate() override { state_->valid = false; }

 private:
  std::shared_ptr<TimerState> state_;
};

void MainLoop::advance(double seconds) {
  if (!world_.mainThread.isCurrent()) platform::fatal("the virtual clock was advanced off the main thread");
  const auto until = now_ + microseconds(platform::Seconds(seconds));
  while (auto due = takeDue(until)) {
    now_ = std::max<std::int64_t>(now_, due->first.first);
    run(due->first, std::move(due->second));
  }
  now_ = std::max<std::int64_t>(now_, until);
}

std::size_t MainLoop::pending() const {
  const std::scoped_lock lock(mutex_);
  return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), [](const auto& entry) {
    return !entry.second.timer || entry.second.timer->valid;
  }));
}

void MainLoop::enqueue(platform::Seconds delay, std::function<void()> block) {
  add(now_ + microseconds(delay), {nullptr, std::move(block)});
}

std::unique_ptr<platform::Timer> MainLoop::schedule(platform::Seconds interval, bool repeats,
                                                    platform::TimerMode mode, std::function<void()> block) {
  auto state = std::make_shared<TimerState>();
  state->repeats = repeats;
  state->interval = microseconds(interval);
  if (repeats) state->interval = std::max(state->interval, shortestRepeat);
  state->mode = mode;
  state->block = std::move(block);
  if (!world_.fails(Call::schedule)) add(now_ + state->interval, {state, {}});
  return std::make_unique<TimerHandle>(std::move(state));
}

void MainLoop::after(platform::Seconds delay, std::function<void()> block) {
  if (!world_.fails(Call::after)) enqueue(delay, std::move(block));
}

void MainLoop::add(std::int64_t moment, Entry entry) {
  const std::scoped_lock lock(mutex_);
  entries_.emplace(Deadline{moment, submissions_++}, std::move(entry));
}

std::optional<std::pair<MainLoop::Deadline, MainLoop::Entry>> MainLoop::takeDue(std::int64_t until) {
  const std::scoped_lock lock(mutex_);
  for (auto next = entries_.begin(); next != entries_.end() && next->first.first <= until;) {
    const auto* timer = next->second.timer.get();
    if (timer && !timer->valid) {
      next = entries_.erase(next);
    } else if (timer && menuTracking && timer->mode == platform::TimerMode::defaultMode) {
      ++next;
    } else {
      auto taken = entries_.extract(next);
      return std::pair(taken.key(), std::move(taken.mapped()));
    }
  }
  return std::nullopt;
}

void MainLoop::run(Deadline deadline, Entry entry) {
  if (!entry.timer) return entry.block();
  const auto timer = entry.timer;  // the block may destroy the handle
  timer->valid = timer->repeats;
  timer->block();
  if (!timer->valid) return;
  // Firings missed while it had to wait are dropped.
  const auto missed = (now_ - deadline.first) / timer->interval;
  add(deadline.first + (missed + 1) * timer->interval, std::move(entry));
}

}  // namespace keyvora::simulated
