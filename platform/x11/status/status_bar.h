#pragma once

#include "platform/status_bar.h"
#include "platform/x11/main_loop.h"
#include "platform/x11/notices.h"

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
