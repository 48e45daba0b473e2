#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "hosts/x11/main_loop.h"
#include "hosts/x11/status/status_menu.h"
#include "hosts/x11/status/tray.h"
#include "platform/status_bar.h"

namespace keyvora::x11 {

/// A title in the system tray: a button in a GtkPlug that the tray takes in by the XEmbed protocol. While
/// there is no tray it exists and shows nowhere. Main thread; needs a display.
class StatusItem final : public platform::StatusItem {
 public:
  explicit StatusItem(MainLoop& loop);
  ~StatusItem() override;
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  [[nodiscard]] bool hasButton() const override { return true; }
  void setTitle(std::string_view title) override;

  /// A menu that is open stays as it is until it closes; the new one opens after that.
  void setMenu(platform::Menu menu) override;

  [[nodiscard]] bool hasTray() const { return tray_.isPresent(); }

 private:
  void dock();
  void undock();
  void showTitle();
  void openMenu(const GdkEvent* event);
  void menuClosed();

  MainLoop& loop_;
  Tray tray_;
  std::string title_;
  platform::Menu menu_;
  /// What is in the tray; null while nothing is.
  GtkWidget* plug_ = nullptr;
  GtkWidget* button_ = nullptr;
  std::unique_ptr<StatusMenu> open_;
  std::unique_ptr<platform::Timer> release_;
};

}  // namespace keyvora::x11
