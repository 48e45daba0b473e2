#pragma once

#include <string>

#include "hosts/x11/applications/applications.h"
#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// Examines why sequences work on this desktop, or do not.
class Diagnosis final : public platform::Diagnosis {
 public:
  /// For the display of this name, or the one that DISPLAY names when it is empty.
  Diagnosis(std::string displayName, Applications& applications)
      : displayName_(std::move(displayName)), applications_(applications) {}

  std::vector<platform::Finding> findings(const std::filesystem::path& document) override;
  std::vector<platform::Fact> facts(std::string_view target) override;

 private:
  std::string displayName_;
  Applications& applications_;
};

}  // namespace keyvora::x11
