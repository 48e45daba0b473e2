#pragma once

#include <memory>
#include <string>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/diagnosis/window_manager_wait.h"
#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// Examines why sequences work on this desktop, or do not.
class Diagnosis final : public platform::Diagnosis {
 public:
  /// How long a desktop may take until its window manager runs.
  static constexpr platform::Seconds startUp{10};

  /// For the display of this name, or the one that DISPLAY names when it is empty.
  Diagnosis(std::string displayName, Applications& applications, platform::MainLoop& loop,
            platform::Seconds limit = startUp)
      : displayName_(std::move(displayName)), applications_(applications), loop_(loop), limit_(limit) {}

  std::vector<platform::Finding> findings(const std::filesystem::path& document) override;
  void whenDesktopIsUp(const std::function<void()>& block) override;
  std::vector<platform::Fact> facts(std::string_view target) override;

 private:
  std::string displayName_;
  Applications& applications_;
  platform::MainLoop& loop_;
  platform::Seconds limit_;
  std::unique_ptr<WindowManagerWait> wait_;
};

}  // namespace keyvora::x11
