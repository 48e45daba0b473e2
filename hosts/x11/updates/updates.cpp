#include "hosts/x11/updates/updates.h"

#include <utility>

#include "appcast/updater.h"
#include "hosts/x11/updates/fetch_process.h"
#include "hosts/x11/updates/update_history.h"
#include "hosts/x11/updates/update_settings.h"
#include "hosts/x11/updates/update_window.h"

namespace keyvora::x11 {

/// An updater with the objects that it uses.
class Updates::Controller final : public platform::UpdaterController {
 public:
  Controller(const Updates& host, platform::UpdaterDelegate& delegate)
      : fetcher_(host.mainLoop_, host.fetchProgram_),
        updater_(std::make_shared<appcast::Updater>(
            updateSettings(host.bundles_.main()),
            appcast::Surroundings{host.mainLoop_, fetcher_, window_, history_,
                                  [&workspace = host.workspace_](const std::string& address) {
                                    workspace.openAddress(address);
                                  }},
            delegate)) {}

  void startUpdater() override { updater_->startUpdater(); }
  void checkForUpdates() override { updater_->checkForUpdates(); }
  void checkForUpdateInformation() override { updater_->checkForUpdateInformation(); }

  [[nodiscard]] std::weak_ptr<appcast::Updater> updater() const { return updater_; }

 private:
  FetchProcess fetcher_;
  UpdateWindow window_;
  UpdateHistory history_;
  std::shared_ptr<appcast::Updater> updater_;
};

Updates::Updates(platform::Bundles& bundles, platform::MainLoop& mainLoop, platform::Workspace& workspace,
                 std::filesystem::path fetchProgram)
    : bundles_(bundles), mainLoop_(mainLoop), workspace_(workspace), fetchProgram_(std::move(fetchProgram)) {}

Updates::~Updates() = default;

std::unique_ptr<platform::UpdaterController> Updates::createController(bool startingUpdater,
                                                                       platform::UpdaterDelegate& delegate) {
  auto controller = std::make_unique<Controller>(*this, delegate);
  updater_ = controller->updater();
  if (startingUpdater) controller->startUpdater();
  return controller;
}

bool Updates::isBusy() const {
  const auto updater = updater_.lock();
  return updater && updater->isBusy();
}

}  // namespace keyvora::x11
