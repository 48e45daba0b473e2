#pragma once

#include "hosts/x11/notices.h"
#include "platform/accessibility.h"

namespace keyvora::x11 {

/// The menus of other applications by AT-SPI. The connection to the accessibility bus is made when the first
/// menu is asked for.
class Accessibility final : public platform::Accessibility {
 public:
  explicit Accessibility(Notices& notices) : notices_(notices) {}

  /// What stands for the user's permission: a display on which the tap can work. Nobody is asked for it.
  bool isTrusted() override;

  /// Says what is missing, here and on the accessibility bus.
  bool isTrustedPrompting() override;

  platform::ElementRef application(platform::ProcessIdentifier process) override;

 private:
  Notices& notices_;
};

}  // namespace keyvora::x11
