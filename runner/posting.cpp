#include "runner/posting.h"

#include "platform/platform.h"

namespace keyvora {

void post(platform::SyntheticEvent& event, std::optional<platform::ProcessIdentifier> target) {
  if (target) {
    event.postTo(*target);
  } else {
    event.postToHardware();
  }
}

std::optional<KeyPress> makeKeyPress(const platform::EventSource* source, std::uint16_t keyCode) {
  auto& keyboard = platform::current().keyboard;
  auto down = keyboard.createEvent(source, keyCode, true);
  if (!down) return std::nullopt;
  auto up = keyboard.createEvent(source, keyCode, false);
  if (!up) return std::nullopt;
  return KeyPress{std::move(down), std::move(up)};
}

}  // namespace keyvora
