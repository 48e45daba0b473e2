#include "tests/macos/rig/recorders/descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/macos/rig/recorders/record.h"

namespace keyvora::rig {

void countOpenFiles(int recordFile) {
  const char* home = std::getenv("HOME");
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
    const int descriptor = std::atoi(entry.path().filename().c_str());
    const std::string file = std::filesystem::read_symlink(entry.path(), ignored);
    if (descriptor <= STDERR_FILENO || descriptor == recordFile || home == nullptr || !file.starts_with(home))
      continue;
    count("open file", 1);
    if ((::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0) violation("%s would be inherited", file.c_str());
  }
}

}  // namespace keyvora::rig
