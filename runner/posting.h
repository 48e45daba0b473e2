#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/keyboard.h"

namespace keyvora {

/// Posts an event to the target's process. When the target is not running, posts it at the hardware level,
/// where it reaches the application with the keyboard focus.
void post(platform::SyntheticEvent& event, std::optional<platform::ProcessIdentifier> target);

/// The two events of one key press.
struct KeyPress {
  std::unique_ptr<platform::SyntheticEvent> down;
  std::unique_ptr<platform::SyntheticEvent> up;
};

/// Makes the key-down and then the key-up of a key; none when either fails. Any thread.
std::optional<KeyPress> makeKeyPress(const platform::EventSource* source, std::uint16_t keyCode);

}  // namespace keyvora
