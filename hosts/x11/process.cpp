#include "hosts/x11/process.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace keyvora::x11 {

void Process::print(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void Process::exit(int status) {
  runExitBlocks();
  // Without static destructors, because other threads are still running.
  std::fflush(stdout);
  _exit(status);
}

void Process::atExit(std::function<void()> block) {
  const std::scoped_lock lock(mutex_);
  blocks_.push_back(std::move(block));
}

void Process::runExitBlocks() {
  std::vector<std::function<void()>> blocks;
  {
    const std::scoped_lock lock(mutex_);
    blocks.swap(blocks_);
  }
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) (*block)();
}

}  // namespace keyvora::x11
