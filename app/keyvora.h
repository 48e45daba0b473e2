#pragma once

#include <memory>
#include <set>
#include <string>

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

  /// Called once, when the main loop has started. Starts everything else.
  void applicationDidFinishLaunching();

  /// The status menu in its present state: a snapshot, whose rows do not change until the menu is built
  /// again.
  [[nodiscard]] platform::Menu menu();

 private:
  Keyvora() = default;

  void installTap();
  void reportFindings();
  void logFindings();
  static void pollTrust(const std::weak_ptr<Keyvora>& delegate, platform::Timer& timer);
  void showState(bool armed, const std::string& text);
  void rebuildMenu();
  platform::StatusItem& status();

  void editMappings();
  void reload();
  void openAX();
  void showLog();
  void toggleLogin();
  void checkUpdates();

  std::unique_ptr<platform::StatusItem> status_;
  /// Still held after it was invalidated.
  std::shared_ptr<platform::Timer> trustPoll_;
  /// The names of the findings that were logged.
  std::set<std::string> reported_;
};

}  // namespace keyvora
