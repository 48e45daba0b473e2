#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace keyvora::platform {

/// Runs work one piece at a time, in the order of submission, off the main thread.
class SerialQueue {
 public:
  virtual ~SerialQueue() = default;

  /// Returns at once. Any thread. `work` must not throw.
  virtual void async(std::function<void()> work) = 0;

  /// Waits until all that was submitted so far has run, for `limit` at the most; false when time ran out.
  virtual bool drain(std::chrono::milliseconds limit) = 0;
};

/// One step of a plan: does its part, then says how long to sleep before the next.
using PlanStep = std::function<std::chrono::microseconds()>;

/// Steps to walk in order, sleeping between them. A plan and not a function that sleeps, so that a host can
/// walk it on a thread and a simulation on its clock.
using Plan = std::vector<PlanStep>;

/// Work off the main thread.
class Queues {
 public:
  virtual ~Queues() = default;

  /// A new serial queue; the label is for debuggers. Any thread.
  virtual std::unique_ptr<SerialQueue> createSerial(const std::string& label) = 0;

  /// Walks the plan to its end on a concurrent queue of high priority: plans given at once run alongside each
  /// other. Returns at once. Any thread.
  virtual void walk(Plan plan) = 0;
};

}  // namespace keyvora::platform
