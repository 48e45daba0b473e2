#pragma once

#include <filesystem>
#include <memory>

#include "platform/applications.h"
#include "platform/bundles.h"
#include "platform/main_loop.h"
#include "platform/updates.h"

namespace keyvora::appcast {
class Updater;
}

namespace keyvora::x11 {

/// Updates from the feed that the main bundle's information dictionary names. Main thread.
class Updates final : public platform::Updates {
 public:
  /// `fetchProgram` is keyvora-fetch.
  Updates(platform::Bundles& bundles, platform::MainLoop& mainLoop, platform::Workspace& workspace,
          std::filesystem::path fetchProgram);
  ~Updates() override;

  std::unique_ptr<platform::UpdaterController> createController(bool startingUpdater,
                                                                platform::UpdaterDelegate& delegate) override;

  /// Whether a check is in progress. Its answer is worth waiting for even if nothing can be shown.
  [[nodiscard]] bool isBusy() const;

 private:
  class Controller;

  platform::Bundles& bundles_;
  platform::MainLoop& mainLoop_;
  platform::Workspace& workspace_;
  std::filesystem::path fetchProgram_;
  /// The newest controller's updater; null before there is one and after it was destroyed.
  std::weak_ptr<appcast::Updater> updater_;
};

}  // namespace keyvora::x11
