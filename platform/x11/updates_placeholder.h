#pragma once

#include "platform/updates.h"

namespace keyvora::x11 {

/// Updates that never come, until there is a layer that looks for them.
class Updates final : public platform::Updates {
 public:
  std::unique_ptr<platform::UpdaterController> createController(bool, platform::UpdaterDelegate&) override {
    class Idle final : public platform::UpdaterController {
      void startUpdater() override {}
      void checkForUpdates() override {}
      void checkForUpdateInformation() override {}
    };
    return std::make_unique<Idle>();
  }

  [[nodiscard]] bool isBusy() const { return false; }
};

}  // namespace keyvora::x11
