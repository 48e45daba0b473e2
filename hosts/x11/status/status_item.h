#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/main_loop.h"
#include "hosts/x11/status/notifier.h"
#include "hosts/x11/status/notifier_host.h"
#include "hosts/x11/status/status_menu.h"
#include "hosts/x11/status/tray.h"
#include "hosts/x11/status/tray_plug.h"
#include "platform/status_bar.h"

namespace keyvora::x11 {

/// A title where the desktop shows it: as a status notifier item where a panel for those is, in the system
/// tray otherwise, never in both. It follows panels that come, go and start anew; while there is none it
/// exists and shows nowhere. Main thread; needs a display.
class StatusItem final : public platform::StatusItem {
 public:
  /// `onUnseen` runs, once in its life, when for `patience` nothing was there to show the item: a desktop
  /// that starts may start its panel last.
  StatusItem(MainLoop& loop, platform::Seconds patience, std::function<void()> onUnseen);
  ~StatusItem() override;
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  [[nodiscard]] bool hasButton() const override { return true; }
  void setTitle(std::string_view title) override;

  /// A menu of ours that is open stays as it is until it closes; the new one opens after that. One that a
  /// panel has opened follows.
  void setMenu(platform::Menu menu) override;

 private:
  void show();
  void showInTray();
  void awaitPanel();
  void openMenu(const std::function<bool(StatusMenu&)>& open);
  void openMenuAt(int x, int y);
  void menuClosed();

  MainLoop& loop_;
  platform::Seconds patience_;
  std::function<void()> onUnseen_;
  std::string title_;
  platform::Menu menu_;
  Tray tray_;
  NotifierHost host_;
  /// What shows it; both null while nothing does.
  std::unique_ptr<Notifier> notifier_;
  std::unique_ptr<TrayPlug> plug_;
  /// Our own menu, from its opening until its command has run.
  std::unique_ptr<StatusMenu> open_;
  std::unique_ptr<platform::Timer> release_;
  std::unique_ptr<platform::Timer> unseen_;
  std::unique_ptr<platform::Timer> opening_;
};

}  // namespace keyvora::x11
