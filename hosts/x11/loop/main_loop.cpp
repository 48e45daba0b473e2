#include "hosts/x11/loop/main_loop.h"

#include <glib.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace keyvora::x11 {
namespace {

/// Moments and spans in GLib's unit.
using Microseconds = Agenda::Microseconds;

/// The ready time of a source that does not wait for a time.
constexpr Microseconds never = -1;

/// The interval of a repeating timer without one, so that it does not keep the loop busy.
constexpr Microseconds shortestInterval = 100;

/// A hundred years: longer than any process lives, and far from overflow.
constexpr double longestSeconds = 100.0 * 365 * 24 * 3600;

Microseconds toMicroseconds(platform::Seconds span) {
  const double seconds = span.count();
  if (!(seconds > 0)) return 0;  // also for "not a number"
  return static_cast<Microseconds>(std::min(seconds, longestSeconds) * 1e6);
}

gboolean dispatch(GSource*, GSourceFunc callback, gpointer data) {
  return callback(data);
}

GSourceFuncs readyTimeSource = {nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};

/// A source of the main context that runs `callback` at `readyTime`, to the microsecond. The caller and the
/// context each have a reference.
GSource* attach(Microseconds readyTime, GSourceFunc callback, gpointer data, GDestroyNotify destroy) {
  GSource* source = g_source_new(&readyTimeSource, sizeof(GSource));
  g_source_set_callback(source, callback, data, destroy);
  g_source_set_ready_time(source, readyTime);
  g_source_attach(source, nullptr);
  return source;
}

class ScheduledTimer;

}  // namespace

/// Whether a menu is open, and which timers became due meanwhile.
class MainLoop::Timing {
 public:
  int openMenus = 0;
  std::vector<ScheduledTimer*> held;
};

namespace {

class ScheduledTimer final : public platform::Timer {
 public:
  ScheduledTimer(std::shared_ptr<MainLoop::Timing> timing, Microseconds interval, bool repeats,
                 platform::TimerMode mode, std::function<void()> block)
      : timing_(std::move(timing)),
        interval_(repeats ? std::max(interval, shortestInterval) : interval),
        due_(g_get_monotonic_time() + interval_),
        repeats_(repeats),
        mode_(mode),
        block_(std::make_shared<std::function<void()>>(std::move(block))),
        source_(attach(due_, fire, this, nullptr)) {}

  ~ScheduledTimer() override { ScheduledTimer::invalidate(); }

  void invalidate() override {
    if (source_ == nullptr) return;
    std::erase(timing_->held, this);
    g_source_destroy(source_);
    g_source_unref(std::exchange(source_, nullptr));
    block_.reset();
  }

  /// Lets a timer that was delayed by a menu fire in the next pass of the loop.
  void release() { g_source_set_ready_time(source_, 0); }

 private:
  static gboolean fire(gpointer data) {
    static_cast<ScheduledTimer*>(data)->fire();
    return G_SOURCE_CONTINUE;  // only invalidation ends a timer
  }

  void fire() {
    if (mode_ == platform::TimerMode::defaultMode && timing_->openMenus > 0) {
      g_source_set_ready_time(source_, never);
      timing_->held.push_back(this);
      return;
    }
    const auto block = block_;  // a copy: the block may invalidate or destroy this timer
    if (repeats_) {
      scheduleNext();
    } else {
      invalidate();
    }
    (*block)();
  }

  /// The next moment on the timer's own grid: a late firing does not shift the later ones, and missed
  /// firings are dropped.
  void scheduleNext() {
    const auto late = g_get_monotonic_time() - due_;
    due_ += (std::max<Microseconds>(late, 0) / interval_ + 1) * interval_;
    g_source_set_ready_time(source_, due_);
  }

  std::shared_ptr<MainLoop::Timing> timing_;
  Microseconds interval_;
  Microseconds due_;
  bool repeats_;
  platform::TimerMode mode_;
  std::shared_ptr<std::function<void()>> block_;
  GSource* source_;
};

}  // namespace

MainLoop::MainLoop() : timing_(std::make_shared<Timing>()), wait_(agenda_) {}

MainLoop::~MainLoop() = default;

bool MainLoop::isMainThread() const {
  return agenda_.isMainThread();
}

std::unique_ptr<platform::Timer> MainLoop::schedule(platform::Seconds interval, bool repeats,
                                                    platform::TimerMode mode, std::function<void()> block) {
  return std::make_unique<ScheduledTimer>(timing_, toMicroseconds(interval), repeats, mode, std::move(block));
}

void MainLoop::after(platform::Seconds delay, std::function<void()> block) {
  agenda_.add(g_get_monotonic_time() + toMicroseconds(delay), std::move(block));
}

void MainLoop::beginTracking() {
  ++timing_->openMenus;
}

void MainLoop::endTracking() {
  if (--timing_->openMenus > 0) return;
  for (auto* timer : std::exchange(timing_->held, {})) timer->release();
}

}  // namespace keyvora::x11
