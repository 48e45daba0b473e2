#pragma once

#include "hosts/x11/main_loop.h"
#include "hosts/x11/notices.h"
#include "platform/status_bar.h"

namespace keyvora::x11 {

/// The system tray as the status bar.
class StatusBar final : public platform::StatusBar {
 public:
  StatusBar(MainLoop& loop, Notices& notices) : loop_(loop), notices_(notices) {}

  std::unique_ptr<platform::StatusItem> createItem() override;

 private:
  MainLoop& loop_;
  Notices& notices_;
};

}  // namespace keyvora::x11
