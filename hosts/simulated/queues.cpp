#include "hosts/simulated/queues.h"

#include <condition_variable>
#include <deque>

namespace keyvora::simulated {

namespace detail {

/// Work of one serial queue. The thread that submits first runs all of it, so that no two pieces run at
/// once.
class Pipe {
 public:
  void add(std::function<void()> work, bool mayRun) {
    {
      const std::scoped_lock lock(mutex_);
      waiting_.push_back(std::move(work));
    }
    if (mayRun) runAll();
  }

  void runAll() {
    std::unique_lock lock(mutex_);
    if (running_) return;
    running_ = true;
    while (!waiting_.empty()) {
      {
        const auto work = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        const MainThread::Role role(true);
        work();
      }
      lock.lock();
    }
    running_ = false;
    idle_.notify_all();
  }

  bool waitUntilIdle(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return idle_.wait_for(lock, limit, [this] { return !running_; }) && waiting_.empty();
  }

  bool isEmpty() {
    const std::scoped_lock lock(mutex_);
    return waiting_.empty() && !running_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable idle_;
  bool running_ = false;
  std::deque<std::function<void()>> waiting_;
};

/// Whether the queues are held, and the list of queues. The queues share it and may outlive `Queues`.
class HeldWork {
 public:
  std::atomic<bool> held = false;

  void adopt(std::weak_ptr<Pipe> pipe) {
    const std::scoped_lock lock(mutex_);
    pipes_.push_back(std::move(pipe));
  }

  void drained(std::chrono::milliseconds limit) {
    const std::scoped_lock lock(mutex_);
    drainLimits_.push_back(limit);
  }

  std::vector<std::chrono::milliseconds> drainLimits() {
    const std::scoped_lock lock(mutex_);
    return drainLimits_;
  }

  void release() {
    held = false;
    std::vector<std::weak_ptr<Pipe>> pipes;
    {
      const std::scoped_lock lock(mutex_);
      pipes = pipes_;
    }
    for (const auto& pipe : pipes) {
      if (const auto present = pipe.lock()) present->runAll();
    }
  }

 private:
  std::mutex mutex_;
  std::vector<std::weak_ptr<Pipe>> pipes_;
  std::vector<std::chrono::milliseconds> drainLimits_;
};

}  // namespace detail

class Queues::Serial final : public platform::SerialQueue {
 public:
  Serial(World& world, std::shared_ptr<detail::HeldWork> held) : world_(world), held_(std::move(held)) {
    held_->adopt(pipe_);
  }

  void async(std::function<void()> work) override {
    if (!world_.fails(Call::async)) pipe_->add(std::move(work), !held_->held);
  }

  bool drain(std::chrono::milliseconds limit) override {
    held_->drained(limit);
    if (world_.fails(Call::drain)) return false;
    if (held_->held) return pipe_->isEmpty();
    return pipe_->waitUntilIdle(limit);
  }

 private:
  World& world_;
  std::shared_ptr<detail::HeldWork> held_;
  std::shared_ptr<detail::Pipe> pipe_ = std::make_shared<detail::Pipe>();
};

Queues::Queues(World& world, MainLoop& loop)
    : world_(world), loop_(loop), held_(std::make_shared<detail::HeldWork>()) {}

Queues::~Queues() = default;

std::vector<std::chrono::milliseconds> Queues::drainLimits() const {
  return held_->drainLimits();
}

void Queues::hold() {
  held_->held = true;
}

void Queues::release() {
  held_->release();
}

std::vector<std::string> Queues::labels() const {
  const std::scoped_lock lock(mutex_);
  return labels_;
}

std::unique_ptr<platform::SerialQueue> Queues::createSerial(const std::string& label) {
  const std::scoped_lock lock(mutex_);
  labels_.push_back(label);
  return std::make_unique<Serial>(world_, held_);
}

void Queues::walk(platform::Plan plan) {
  if (world_.fails(Call::walk)) return;
  if (walking == Walking::inLine) {
    for (const auto& each : plan) runStep(each);
    return;
  }
  const auto shared = std::make_shared<const platform::Plan>(std::move(plan));
  loop_.enqueue(platform::Seconds(0), [this, shared] { step(shared, 0); });
}

void Queues::step(const std::shared_ptr<const platform::Plan>& plan, std::size_t index) {
  if (index == plan->size()) return;
  const auto sleep = runStep((*plan)[index]);
  loop_.enqueue(sleep, [this, plan, index] { step(plan, index + 1); });
}

std::chrono::microseconds Queues::runStep(const platform::PlanStep& step) {
  const MainThread::Role role(true);
  const auto sleep = step();
  if (sleep.count() > 0) world_.trace.add(trace::Slept{sleep});
  return sleep;
}

}  // namespace keyvora::simulated
