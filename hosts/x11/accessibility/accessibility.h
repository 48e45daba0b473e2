#pragma once

#include <optional>
#include <string>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/notices.h"
#include "platform/accessibility.h"

namespace keyvora::x11 {

class CurrentTap;

/// The menus of other applications, read by AT-SPI. Connects to the accessibility bus when the first menu
/// is read.
class Accessibility final : public platform::Accessibility {
 public:
  /// `applications` tells which document's window an action is meant for.
  Accessibility(Notices& notices, Applications& applications, CurrentTap& tap)
      : notices_(notices), applications_(applications), tap_(tap) {}

  /// In place of the user's permission: whether the display allows a tap. Nobody is asked for a permission.
  /// The server is queried until it is usable. After that the answer stays, since keyvora ends when it
  /// loses its display.
  bool isTrusted() override;

  /// The same, and prints what the display lacks.
  bool isTrustedPrompting() override;

  platform::ElementRef application(platform::ProcessIdentifier process) override;

 private:
  std::optional<std::string> problem();

  Notices& notices_;
  Applications& applications_;
  CurrentTap& tap_;
  /// The display found usable; empty before.
  std::string goodDisplay_;
};

}  // namespace keyvora::x11
