#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace keyvora::platform {

/// Runs pieces of work one at a time, in the order of submission, off the main thread.
class SerialQueue {
 public:
  virtual ~SerialQueue() = default;

  /// Returns at once. Any thread. `work` must not throw.
  virtual void async(std::function<void()> work) = 0;

  /// Waits until everything submitted so far has run, for at most `limit`; false on a timeout.
  virtual bool drain(std::chrono::milliseconds limit) = 0;
};

/// One step of a plan: acts, then returns how long to sleep before the next step.
using PlanStep = std::function<std::chrono::microseconds()>;

/// Steps to run in order, sleeping between them. A list and not a function that sleeps, so that a host can
/// walk it on a thread and the simulation on its virtual clock.
using Plan = std::vector<PlanStep>;

/// Work off the main thread.
class Queues {
 public:
  virtual ~Queues() = default;

  /// A new serial queue; the label is for debuggers. Any thread.
  virtual std::unique_ptr<SerialQueue> createSerial(const std::string& label) = 0;

  /// Walks the plan to its end on a concurrent queue of high priority: plans submitted together run in
  /// parallel. Returns at once. Any thread.
  virtual void walk(Plan plan) = 0;
};

}  // namespace keyvora::platform
