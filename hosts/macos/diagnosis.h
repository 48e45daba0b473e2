#pragma once

#include "platform/diagnosis.h"

namespace keyvora::macos {

/// Facts about this Mac. There are no findings: the system itself asks for the Accessibility permission and
/// reports what is missing.
class Diagnosis final : public platform::Diagnosis {
 public:
  std::vector<platform::Finding> findings(const std::filesystem::path& document) override;

  /// The system's version, the bundle, its signature, and the running target.
  std::vector<platform::Fact> facts(std::string_view target) override;
};

}  // namespace keyvora::macos
