#include "hosts/x11/keyboard/current_tap.h"

#include <utility>

#include "hosts/x11/keyboard/owner_end.h"

namespace keyvora::x11 {

void CurrentTap::set(std::weak_ptr<OwnerEnd> tap) {
  const std::scoped_lock lock(mutex_);
  tap_ = std::move(tap);
}

KeyboardIsFree CurrentTap::letGo() {
  if (const auto current = tap()) current->settle();
  return {};
}

bool CurrentTap::inject(std::uint8_t keycode, bool down, const OwnMark& mark) {
  const auto current = tap();
  if (current) current->inject(keycode, down, mark);
  return current != nullptr;
}

std::shared_ptr<OwnerEnd> CurrentTap::tap() {
  const std::scoped_lock lock(mutex_);
  return tap_.lock();
}

}  // namespace keyvora::x11
