#include "tools/on_path.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace keyvora::tools {

bool onPath(std::string_view program) {
  const char* path = std::getenv("PATH");
  std::string_view rest = path == nullptr ? "" : path;
  while (!rest.empty()) {
    const auto end = rest.find(':');
    const auto file = std::filesystem::path(rest.substr(0, end)) / program;
    if (access(file.c_str(), X_OK) == 0) return true;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return false;
}

}  // namespace keyvora::tools
