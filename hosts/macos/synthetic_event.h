#pragma once

#import <CoreGraphics/CoreGraphics.h>

#include "hosts/macos/cf_ref.h"
#include "platform/keyboard.h"

namespace keyvora::macos {

/// A private CGEventSource. Any thread once its user data is set.
class EventSource final : public platform::EventSource {
 public:
  explicit EventSource(CFRef<CGEventSourceRef> source) : source_(std::move(source)) {}

  void setUserData(std::int64_t userData) override;

  [[nodiscard]] CGEventSourceRef get() const { return source_.get(); }

 private:
  CFRef<CGEventSourceRef> source_;
};

/// A CGEvent that was made and not posted yet. One thread at a time.
class SyntheticEvent final : public platform::SyntheticEvent {
 public:
  explicit SyntheticEvent(CFRef<CGEventRef> event) : event_(std::move(event)) {}

  void setType(std::uint32_t type) override;
  void setFlags(std::uint64_t flags) override;
  void postTo(platform::ProcessIdentifier process) override;
  void postToHardware() override;

  [[nodiscard]] CGEventRef get() const { return event_.get(); }

 private:
  CFRef<CGEventRef> event_;
};

}  // namespace keyvora::macos
