#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/loop/main_loop.h"
#include "hosts/x11/status/notifier.h"
#include "hosts/x11/status/notifier_host.h"
#include "hosts/x11/status/status_menu.h"
#include "hosts/x11/status/tray.h"
#include "hosts/x11/status/tray_plug.h"
#include "platform/status_bar.h"

namespace keyvora::x11 {

/// The item as the desktop shows it: as a status notifier item if a panel for those is present, else in the
/// system tray, never in both. Follows panels that start and end; while there is none, the item exists and
/// is not visible. Main thread; needs a display.
class StatusItem final : public platform::StatusItem {
 public:
  /// `onUnseen` runs at most once, when nothing could show the item for `patience`: a desktop may start its
  /// panel last.
  StatusItem(MainLoop& loop, platform::Seconds patience, std::function<void()> onUnseen);
  ~StatusItem() override;
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  [[nodiscard]] bool hasButton() const override { return true; }
  void setTitle(std::string_view title) override;

  /// keyvora's own menu keeps its rows while it is open; the new ones show at the next opening. A menu
  /// opened by a panel changes at once.
  void setMenu(platform::Menu menu) override;

 private:
  void show();
  void showInTray();
  void inNextPass(std::function<void()> step);
  void dock();
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
  /// The two ways of showing it; both null while there is no panel.
  std::unique_ptr<Notifier> notifier_;
  std::unique_ptr<TrayPlug> plug_;
  /// The next step towards the tray's slot; null when there is none.
  std::unique_ptr<platform::Timer> showing_;
  /// keyvora's own menu, from its opening until its command has run.
  std::unique_ptr<StatusMenu> open_;
  std::unique_ptr<platform::Timer> release_;
  std::unique_ptr<platform::Timer> unseen_;
  std::unique_ptr<platform::Timer> opening_;
};

}  // namespace keyvora::x11
