#pragma once

#include <string>

#include "platform/applications.h"

namespace keyvora::macos {

/// Running and frontmost applications, from NSRunningApplication and NSWorkspace. Main thread.
class Applications final : public platform::Applications {
 public:
  std::vector<platform::ProcessIdentifier> running(std::string_view bundleIdentifier) override;
  std::optional<std::string_view> frontmostBundleIdentifier() override;

 private:
  /// The bytes of the last returned view. The buffer grows once and is reused.
  std::string frontmost_;
};

/// Opens files and addresses by NSWorkspace. Main thread.
class Workspace final : public platform::Workspace {
 public:
  void openFile(const std::string& path) override;
  void openAddress(const std::string& address) override;
};

}  // namespace keyvora::macos
