#include "hosts/simulated/failures.h"

namespace keyvora::simulated {

void Failures::always(Call call) {
  const std::scoped_lock lock(mutex_);
  rules_[indexOf(call)].always = true;
  anyRule_ = true;
}

void Failures::nth(Call call, std::uint64_t n) {
  const std::scoped_lock lock(mutex_);
  rules_[indexOf(call)].times.insert(counts_[indexOf(call)] + n);
  anyRule_ = true;
}

void Failures::event(std::uint16_t keyCode, bool down) {
  const std::scoped_lock lock(mutex_);
  events_.emplace(keyCode, down);
  anyRule_ = true;
}

void Failures::clear() {
  const std::scoped_lock lock(mutex_);
  anyRule_ = false;
  rules_ = {};
  events_.clear();
}

std::uint64_t Failures::count(Call call) const {
  return counts_[indexOf(call)];
}

bool Failures::fails(Call call) {
  if (onCall) onCall(call);
  const auto time = ++counts_[indexOf(call)];
  if (!anyRule_) return false;
  const std::scoped_lock lock(mutex_);
  const auto& rule = rules_[indexOf(call)];
  return rule.always || rule.times.contains(time);
}

bool Failures::failsFor(std::uint16_t keyCode, bool down) const {
  if (!anyRule_) return false;
  const std::scoped_lock lock(mutex_);
  return events_.contains({keyCode, down});
}

}  // namespace keyvora::simulated
