#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "hosts/simulated/world.h"
#include "platform/application.h"

namespace keyvora::simulated {

/// The process: its output and its exit are only recorded.
class Process final : public platform::Process {
 public:
  explicit Process(World& world) : world_(world) {}

  void print(std::string_view line) override;
  void exit(int status) override { end(status); }
  void atExit(std::function<void()> block) override;

  /// A normal end: runs the blocks, the last added first, and records the status.
  void end(int status);

 private:
  World& world_;
  std::mutex mutex_;
  std::vector<std::function<void()>> blocks_;
};

/// The application. While it runs, the test's `whileRunning` takes the place of the loop.
class Application final : public platform::Application {
 public:
  Application(World& world, Process& process) : world_(world), process_(process) {}

  /// Called by `run` after launching has finished; `run` returns when it does.
  std::function<void()> whileRunning;

  void setDelegate(std::function<void()> didFinishLaunching) override;
  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void activate() override;
  int run() override;
  void terminate() override { process_.end(0); }

 private:
  World& world_;
  Process& process_;
  std::function<void()> didFinishLaunching_;
};

}  // namespace keyvora::simulated
