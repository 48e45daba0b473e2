#pragma once

#include "platform/accessibility.h"

namespace keyvora::macos {

/// The Accessibility interface (AXUIElement). Main thread; the platform's own messaging timeout applies.
class Accessibility final : public platform::Accessibility {
 public:
  bool isTrusted() override;
  bool isTrustedPrompting() override;
  platform::ElementRef application(platform::ProcessIdentifier process) override;
};

}  // namespace keyvora::macos
