#pragma once

#include "platform/status_bar.h"

namespace keyvora::macos {

/// The menu bar's status items. Main thread.
class StatusBar final : public platform::StatusBar {
 public:
  std::unique_ptr<platform::StatusItem> createItem() override;
};

}  // namespace keyvora::macos
