#import "event_recorder.h"

#import <CoreGraphics/CoreGraphics.h>

#include "record.h"

namespace {

const char* nameOf(NSEventType type) {
  switch (type) {
    case NSEventTypeKeyDown:
      return "down";
    case NSEventTypeKeyUp:
      return "up";
    case NSEventTypeFlagsChanged:
      return "flags";
    default:
      return nullptr;
  }
}

/// "down 9 flags 0x20100 user 0x5e7a91c3 repeat 0"
std::string describe(NSEvent* event, const char* name) {
  // The event as it was posted: AppKit's event lacks some flags and the user data.
  CGEventRef posted = event.CGEvent;
  const auto flags = posted == nullptr ? 0 : static_cast<std::uint64_t>(CGEventGetFlags(posted));
  const auto user = posted == nullptr ? 0 : CGEventGetIntegerValueField(posted, kCGEventSourceUserData);
  const bool repeats = event.type == NSEventTypeKeyDown && event.ARepeat;
  char text[128];
  std::snprintf(text, sizeof text, "%s %d flags 0x%llx user 0x%llx repeat %d", name,
                static_cast<int>(event.keyCode), static_cast<unsigned long long>(flags),
                static_cast<unsigned long long>(user), repeats ? 1 : 0);
  return text;
}

}  // namespace

@implementation KVStandInApplication

- (void)sendEvent:(NSEvent*)event {
  if (const char* name = nameOf(event.type)) keyvora::stand_in::record().line(describe(event, name));
  [super sendEvent:event];
}

@end
