#include "runner/excel.h"

#include "platform/platform.h"

namespace keyvora::Excel {

std::optional<platform::ProcessIdentifier> app() {
  const auto processes = platform::current().applications.running(bundleIdentifier);
  if (processes.empty()) return std::nullopt;
  return processes.front();
}

bool isFrontmost() {
  return platform::current().applications.frontmostBundleIdentifier() == bundleIdentifier;
}

}  // namespace keyvora::Excel
