#include "system/updater.h"

#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"

namespace keyvora {

Updater& Updater::shared() {
  return platform::shared<Updater>([] { return std::make_unique<Updater>(); });
}

platform::UpdaterController& Updater::controller() {
  if (!controller_) controller_ = platform::current().updates.createController(false, bridge_);
  return *controller_;
}

void Updater::probe() {
  platform::requireMainThread("Updater::probe");
  bridge_.onProbe = [](const std::string& message, std::int32_t status) {
    auto& process = platform::current().process;
    process.print(message);
    process.exit(status);
  };
  controller().startUpdater();
  controller().checkForUpdateInformation();
}

}  // namespace keyvora
