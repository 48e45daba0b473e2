#import "hosts/macos/synthetic_event.h"

namespace keyvora::macos {

void EventSource::setUserData(std::int64_t userData) { CGEventSourceSetUserData(source_.get(), userData); }

void SyntheticEvent::setType(std::uint32_t type) {
  CGEventSetType(event_.get(), static_cast<CGEventType>(type));
}

void SyntheticEvent::setFlags(std::uint64_t flags) { CGEventSetFlags(event_.get(), flags); }

void SyntheticEvent::postTo(platform::ProcessIdentifier process) { CGEventPostToPid(process, event_.get()); }

void SyntheticEvent::postToHardware() { CGEventPost(kCGHIDEventTap, event_.get()); }

}  // namespace keyvora::macos
