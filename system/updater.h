#pragma once

#include <memory>

#include "platform/updates.h"
#include "system/bridge.h"

namespace keyvora {

/// Owner of the update framework's controller. Main thread.
class Updater {
 public:
  static Updater& shared();

  Updater() = default;
  Updater(const Updater&) = delete;
  Updater& operator=(const Updater&) = delete;

  /// The controller, created on first access and not started.
  platform::UpdaterController& controller();

  /// Starts a check without user interface whose answer is printed on standard output and ends the process.
  void probe();

 private:
  Bridge bridge_;
  std::unique_ptr<platform::UpdaterController> controller_;
};

}  // namespace keyvora
