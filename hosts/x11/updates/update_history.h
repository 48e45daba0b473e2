#pragma once

#include <filesystem>
#include <string>

#include "appcast/history.h"

namespace keyvora::x11 {

/// The history of update checks, in a small file in the user's state directory.
class UpdateHistory final : public appcast::History {
 public:
  /// `keyvora/updates` in XDG_STATE_HOME, or in `.local/state` of the home directory.
  UpdateHistory();
  explicit UpdateHistory(std::filesystem::path file);

  std::optional<platform::Seconds> sinceLastCheck() override;
  void recordCheck() override;
  std::string skippedVersion() override;
  void skipVersion(const std::string& version) override;

 private:
  std::filesystem::path file_;
};

}  // namespace keyvora::x11
