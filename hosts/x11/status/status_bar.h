#pragma once

#include "hosts/x11/loop/main_loop.h"
#include "platform/status_bar.h"

namespace keyvora::x11 {

/// The desktop's panels as the status bar.
class StatusBar final : public platform::StatusBar {
 public:
  /// The time before a missing panel is reported: a desktop may start its panel last.
  static constexpr platform::Seconds usualPatience{15.0};

  explicit StatusBar(MainLoop& loop, platform::Seconds patience = usualPatience)
      : loop_(loop), patience_(patience) {}

  std::unique_ptr<platform::StatusItem> createItem() override;

 private:
  MainLoop& loop_;
  platform::Seconds patience_;
};

}  // namespace keyvora::x11
