#pragma once

#include "platform/updates.h"

namespace keyvora::macos {

/// Sparkle's standard updater. Main thread.
class Updates final : public platform::Updates {
 public:
  std::unique_ptr<platform::UpdaterController> createController(bool startingUpdater,
                                                                platform::UpdaterDelegate& delegate) override;
};

}  // namespace keyvora::macos
