#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/updates.h"

namespace keyvora {

/// The updater's delegate: reports the answer of a probe, and lets the update window take the focus of an
/// accessory application. Main thread; calls from another thread are fatal.
class Bridge final : public platform::UpdaterDelegate {
 public:
  /// Called with a probe's answer as a line of text and an exit status. While it is empty, answers are
  /// dropped.
  std::function<void(const std::string& message, std::int32_t status)> onProbe;

  void didFindValidUpdate(const platform::UpdateItem& item) override;
  void didNotFindUpdate(const std::string& errorDescription) override;
  void didAbort(const std::string& errorDescription) override;
  [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override;
  [[nodiscard]] bool shouldHandleShowingScheduledUpdate(const platform::UpdateItem& item,
                                                        bool inImmediateFocus) const override;
  void willHandleShowingUpdate(bool handleShowingUpdate, const platform::UpdateItem& item) override;
  void willFinishUpdateSession() override;
};

}  // namespace keyvora
