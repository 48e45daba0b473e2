#include "tests/macos/rig/recorders/key_event.h"

#include <cinttypes>
#include <cstdio>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/window_server.h"

namespace keyvora::rig {
namespace {

/// The modifier keys from right Command to Fn.
constexpr CGKeyCode firstModifier = 54;
constexpr CGKeyCode lastModifier = 63;

const char* nameOf(CGEventType type) {
  switch (type) {
    case kCGEventKeyDown:
      return "keyDown";
    case kCGEventKeyUp:
      return "keyUp";
    case kCGEventFlagsChanged:
      return "flagsChanged";
    default:
      return "other";
  }
}

/// The frameworks create temporary objects while an event is posted: without an autorelease pool, the
/// runtime complains.
void leaveTemporaryObject() { [[[NSObject alloc] init] autorelease]; }

}  // namespace

std::string KeyEvent::description() const {
  char text[128];
  std::snprintf(text, sizeof text, "%s %u flags 0x%" PRIx64 " user 0x%" PRIx64, nameOf(eventType), key, flags,
                static_cast<uint64_t>(userData));
  return text;
}

KeyEvent* makeKeyEvent(CGKeyCode key, bool down, CGEventFlags flags) {
  auto* event = new KeyEvent;
  const bool modifier = key >= firstModifier && key <= lastModifier;
  event->eventType = modifier ? kCGEventFlagsChanged : (down ? kCGEventKeyDown : kCGEventKeyUp);
  event->key = key;
  event->flags = flags | kCGEventFlagMaskNonCoalesced;
  return event;
}

}  // namespace keyvora::rig

using keyvora::rig::KeyEvent;
using keyvora::rig::KeyEventSource;
using keyvora::rig::use;

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
  keyvora::rig::record("CGEventSourceCreate state %d", state);
  if (keyvora::rig::fails("CGEventSourceCreate")) return nullptr;
  return reinterpret_cast<CGEventSourceRef>(new KeyEventSource(state));
}

void CGEventSourceSetUserData(CGEventSourceRef source, int64_t userData) {
  auto* found = use<KeyEventSource>(source, "CGEventSourceSetUserData");
  if (found != nullptr) found->userData = userData;
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode key, bool down) {
  if (keyvora::rig::fails("CGEventCreateKeyboardEvent")) return nullptr;
  KeyEvent* event = keyvora::rig::makeKeyEvent(key, down, 0);
  const auto* from = source == nullptr ? nullptr : use<KeyEventSource>(source, "CGEventCreateKeyboardEvent");
  if (from != nullptr) event->userData = from->userData;
  return event->reference();
}

CGEventType CGEventGetType(CGEventRef event) {
  const auto* found = use<KeyEvent>(event, "CGEventGetType");
  return found == nullptr ? kCGEventNull : found->eventType;
}

void CGEventSetType(CGEventRef event, CGEventType type) {
  if (auto* found = use<KeyEvent>(event, "CGEventSetType")) found->eventType = type;
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
  const auto* found = use<KeyEvent>(event, "CGEventGetFlags");
  return found == nullptr ? 0 : found->flags;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  if (auto* found = use<KeyEvent>(event, "CGEventSetFlags")) found->flags = flags;
}

int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field) {
  const auto* found = use<KeyEvent>(event, "CGEventGetIntegerValueField");
  if (found == nullptr) return 0;
  switch (field) {
    case kCGKeyboardEventKeycode:
      return found->key;
    case kCGEventSourceUserData:
      return found->userData;
    case kCGKeyboardEventKeyboardType:
      return 91;  // unused fields get another value than used ones
    case kCGEventSourceUserID:
      return 501;
    default:
      return 0;
  }
}

void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value) {
  auto* found = use<KeyEvent>(event, "CGEventSetIntegerValueField");
  if (found == nullptr) return;
  if (field == kCGKeyboardEventKeycode) found->key = static_cast<CGKeyCode>(value);
  if (field == kCGEventSourceUserData) found->userData = value;
}

void CGEventPostToPid(pid_t process, CGEventRef event) {
  keyvora::rig::leaveTemporaryObject();
  auto* found = use<KeyEvent>(event, "CGEventPostToPid");
  if (found != nullptr) keyvora::rig::record("post to %d: %s", process, found->description().c_str());
}

void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
  keyvora::rig::leaveTemporaryObject();
  auto* found = use<KeyEvent>(event, "CGEventPost");
  if (found == nullptr) return;
  keyvora::rig::record("post at %u: %s", tap, found->description().c_str());
  keyvora::rig::WindowServer::shared().inject(*found);
}
