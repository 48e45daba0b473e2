#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/keyboard.h"

namespace keyvora {

/// Posts an event to the target's process or, when the target is not running, at the hardware level: whatever
/// has the keyboard then receives it.
void post(platform::SyntheticEvent& event, std::optional<platform::ProcessIdentifier> target);

/// The two events of one key press.
struct KeyPress {
  std::unique_ptr<platform::SyntheticEvent> down;
  std::unique_ptr<platform::SyntheticEvent> up;
};

/// Makes the key-down and then the key-up of a key; none when either cannot be made. Any thread.
std::optional<KeyPress> makeKeyPress(const platform::EventSource* source, std::uint16_t keyCode);

}  // namespace keyvora
