#include "hosts/x11/keyboard/synthetic_event.h"

#include <utility>

#include "hosts/x11/keyboard/pending_verdict.h"

namespace keyvora::x11 {

SyntheticEvent::SyntheticEvent(std::shared_ptr<Poster> poster, KeyStroke stroke)
    : poster_(std::move(poster)), stroke_(stroke) {}

void SyntheticEvent::setType(std::uint32_t type) {
  using namespace platform;
  stroke_.isFlagsChange = type == event_type::flagsChanged;  // up or down, as it was made
  if (type == event_type::keyDown) stroke_.down = true;
  if (type == event_type::keyUp) stroke_.down = false;
}

void SyntheticEvent::postTo(platform::ProcessIdentifier process) {
  settlePendingVerdict();
  poster_->sendTo(process, stroke_);
}

void SyntheticEvent::postToHardware() {
  settlePendingVerdict();
  poster_->inject(stroke_);
}

}  // namespace keyvora::x11
