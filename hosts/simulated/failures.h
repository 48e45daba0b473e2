#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <utility>

#include "hosts/simulated/calls.h"

namespace keyvora::simulated {

/// Makes calls of the door fail, counts them, and reports each to `onCall`. `allCalls` describes what a
/// failure of each call is. Any thread.
class Failures {
 public:
  /// Called for each call of the door before it is carried out, on the caller's thread: for tests of an
  /// order that the trace does not show. Set it while nothing else calls.
  std::function<void(Call)> onCall;

  /// The call fails from now on.
  void always(Call call);

  /// The call fails once: the `n`-th call from now, counted from 1.
  void nth(Call call, std::uint64_t n);

  /// `createEvent` fails from now on for this key and direction.
  void event(std::uint16_t keyCode, bool down);

  /// No call fails from now on.
  void clear();

  /// How many times the call was made so far, including failures.
  [[nodiscard]] std::uint64_t count(Call call) const;

  /// For the parts of the simulated host: counts the call and returns whether it fails.
  bool fails(Call call);

  /// For the simulated keyboard: whether this event cannot be made.
  [[nodiscard]] bool failsFor(std::uint16_t keyCode, bool down) const;

 private:
  struct Rule {
    bool always = false;
    std::set<std::uint64_t> times;  // counted from 1
  };

  std::array<std::atomic<std::uint64_t>, callCount> counts_{};
  std::atomic<bool> anyRule_ = false;  // so that a call without any rule takes no lock
  mutable std::mutex mutex_;
  std::array<Rule, callCount> rules_;
  std::set<std::pair<std::uint16_t, bool>> events_;
};

}  // namespace keyvora::simulated
