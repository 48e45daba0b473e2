#pragma once

#include <memory>

#include "platform/main_loop.h"
#include "platform/menu.h"
#include "platform/status_bar.h"

namespace keyvora {

/// The application delegate: launch, the poll for the Accessibility grant, the status item and its menu. Main
/// thread. Callbacks that outlive it refer to it weakly, so it is made through `create`.
class Keyvora : public std::enable_shared_from_this<Keyvora> {
 public:
  /// Fatal off the main thread.
  static std::shared_ptr<Keyvora> create();

  /// Everything that happens once when the application's loop has started.
  void applicationDidFinishLaunching();

  /// The status menu as it reads now.
  [[nodiscard]] platform::Menu menu();

 private:
  Keyvora() = default;

  void installTap();
  void pollTrust();
  void showState(bool armed, const std::string& text);
  void rebuildMenu();

  void editMappings();
  void reload();
  void openAX();
  void showLog();
  void toggleLogin();
  void checkUpdates();

  std::unique_ptr<platform::StatusItem> status_;
  /// Kept after it was invalidated.
  std::unique_ptr<platform::Timer> trustPoll_;
};

}  // namespace keyvora
