#pragma once

#include "platform/keyboard.h"

namespace keyvora::macos {

/// The session's keyboard through Core Graphics events.
class Keyboard final : public platform::Keyboard {
 public:
  std::unique_ptr<platform::EventTap> createTap(std::uint64_t eventMask,
                                                platform::TapHandler handler) override;
  std::unique_ptr<platform::EventSource> createSource() override;
  std::unique_ptr<platform::SyntheticEvent> createEvent(const platform::EventSource* source,
                                                        std::uint16_t keyCode, bool down) override;
};

}  // namespace keyvora::macos
