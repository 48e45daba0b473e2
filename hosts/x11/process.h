#pragma once

#include <mutex>
#include <vector>

#include "platform/application.h"

namespace keyvora::x11 {

/// The process. Exit blocks run once, the last added first.
class Process final : public platform::Process {
 public:
  void print(std::string_view line) override;
  void exit(int status) override;
  void atExit(std::function<void()> block) override;

  /// Runs the exit blocks now, before the process ends. Any thread.
  void runExitBlocks();

 private:
  std::mutex mutex_;
  std::vector<std::function<void()>> blocks_;
};

}  // namespace keyvora::x11
