#import "hosts/macos/process.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "hosts/macos/guarded.h"

namespace keyvora::macos {
namespace {

struct ExitBlocks {
  std::mutex mutex;
  std::vector<std::function<void()>> blocks;
};

/// Never destroyed: other threads may add to it during the exit.
ExitBlocks& exitBlocks() {
  static auto& kept = *new ExitBlocks;
  return kept;
}

void runExitBlocks() {
  std::vector<std::function<void()>> blocks;
  {
    const std::scoped_lock lock(exitBlocks().mutex);
    blocks.swap(exitBlocks().blocks);
  }
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) guarded(*block);
}

}  // namespace

void Process::print(std::string_view line) {
  const std::string text = std::string(line) + "\n";
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void Process::exit(int status) { std::exit(status); }

void Process::atExit(std::function<void()> block) {
  static const int registered = std::atexit(runExitBlocks);
  static_cast<void>(registered);
  const std::scoped_lock lock(exitBlocks().mutex);
  exitBlocks().blocks.push_back(std::move(block));
}

}  // namespace keyvora::macos
