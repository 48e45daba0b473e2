#pragma once

#include <atomic>
#include <memory>

#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/poster.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// The source of synthetic events: holds the user data.
class EventSource : public platform::EventSource {
 public:
  void setUserData(std::int64_t userData) override { userData_ = userData; }
  [[nodiscard]] std::int64_t userData() const { return userData_; }

 private:
  std::atomic<std::int64_t> userData_ = 0;
};

/// A key stroke to be posted. Posting thaws the keyboard first.
class SyntheticEvent : public platform::SyntheticEvent {
 public:
  SyntheticEvent(std::shared_ptr<Poster> poster, CurrentTap& tap, KeyStroke stroke);

  void setType(std::uint32_t type) override;
  void setFlags(std::uint64_t flags) override { stroke_.flags = flags; }
  void postTo(platform::ProcessIdentifier process) override;
  void postToHardware() override;

 private:
  std::shared_ptr<Poster> poster_;
  CurrentTap& tap_;
  KeyStroke stroke_;
};

}  // namespace keyvora::x11
