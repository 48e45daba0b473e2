#include "hosts/simulated/application.h"

#include <string>

namespace keyvora::simulated {

void Process::print(std::string_view line) {
  if (!world_.fails(Call::print)) world_.trace.add(trace::Printed{std::string(line)});
}

void Process::atExit(std::function<void()> block) {
  if (world_.fails(Call::atExit)) return;
  const std::scoped_lock lock(mutex_);
  blocks_.push_back(std::move(block));
}

void Process::end(int status) {
  std::vector<std::function<void()>> blocks;
  {
    const std::scoped_lock lock(mutex_);
    blocks.swap(blocks_);
  }
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) (*block)();
  world_.trace.add(trace::Exited{status});
}

void Application::setDelegate(std::function<void()> didFinishLaunching) {
  didFinishLaunching_ = std::move(didFinishLaunching);
  world_.trace.add(trace::DelegateSet{});
}

void Application::setActivationPolicy(platform::ActivationPolicy policy) {
  if (!world_.fails(Call::setActivationPolicy)) world_.trace.add(trace::PolicySet{policy});
}

void Application::activate() {
  if (!world_.fails(Call::activate)) world_.trace.add(trace::Activated{});
}

int Application::run() {
  if (didFinishLaunching_) didFinishLaunching_();
  if (whileRunning) whileRunning();
  return 0;
}

}  // namespace keyvora::simulated
