#include "hosts/x11/keyboard/synthetic_event.h"

#include <utility>

namespace keyvora::x11 {

SyntheticEvent::SyntheticEvent(std::shared_ptr<Poster> poster, CurrentTap& tap, KeyStroke stroke)
    : poster_(std::move(poster)), tap_(tap), stroke_(stroke) {}

void SyntheticEvent::setType(std::uint32_t type) {
  using namespace platform;
  stroke_.isFlagsChange = type == event_type::flagsChanged;  // `down` stays as constructed
  if (type == event_type::keyDown) stroke_.down = true;
  if (type == event_type::keyUp) stroke_.down = false;
}

void SyntheticEvent::postTo(platform::ProcessIdentifier process) {
  poster_->sendTo(process, stroke_, tap_.letGo());
}

void SyntheticEvent::postToHardware() {
  poster_->inject(stroke_, tap_, tap_.letGo());
}

}  // namespace keyvora::x11
