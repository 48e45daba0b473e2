#pragma once

#include <optional>
#include <string>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/notices.h"
#include "platform/accessibility.h"

namespace keyvora::x11 {

class CurrentTap;

/// The menus of other applications by AT-SPI. The connection to the accessibility bus is made when the first
/// menu is asked for.
class Accessibility final : public platform::Accessibility {
 public:
  /// `applications` tells which document is meant.
  Accessibility(Notices& notices, Applications& applications, CurrentTap& tap)
      : notices_(notices), applications_(applications), tap_(tap) {}

  /// What stands for the user's permission: a display on which the tap can work. Nobody is asked for it. The
  /// server is asked until it is there; keyvora ends with a display that it has, so the answer stays.
  bool isTrusted() override;

  /// Says what the display lacks.
  bool isTrustedPrompting() override;

  platform::ElementRef application(platform::ProcessIdentifier process) override;

 private:
  std::optional<std::string> problem();

  Notices& notices_;
  Applications& applications_;
  CurrentTap& tap_;
  /// The display that was found good; none before.
  std::string goodDisplay_;
};

}  // namespace keyvora::x11
