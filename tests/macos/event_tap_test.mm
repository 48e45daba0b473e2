#import "hosts/macos/event_tap.h"

#include <gtest/gtest.h>

#include "runner/own_event_marker.h"

namespace keyvora::macos {
namespace {

namespace event_type = platform::event_type;

/// A key event as the system makes it, with these flags.
CFRef<CGEventRef> made(CGKeyCode key, bool down, CGEventFlags flags, CGEventSourceRef source = nullptr) {
  auto event = CFRef<CGEventRef>::adopt(CGEventCreateKeyboardEvent(source, key, down));
  CGEventSetFlags(event.get(), flags);
  return event;
}

TEST(KeyEventOf, AKeyHasItsCodeItsFlagsAndNoMarker) {
  const auto event = made(35, true, kCGEventFlagMaskShift | kCGEventFlagMaskCommand);
  EXPECT_EQ(
      keyEventOf(kCGEventKeyDown, event.get()),
      (platform::KeyEvent{.type = event_type::keyDown, .keyCode = 35, .flags = 0x120000, .userData = 0}));
}

TEST(KeyEventOf, TheTypeIsTheOneThatTheTapWasCalledWith) {
  const auto event = made(4, false, 0);
  EXPECT_EQ(keyEventOf(kCGEventKeyUp, event.get()).type, event_type::keyUp);
  EXPECT_EQ(keyEventOf(kCGEventFlagsChanged, event.get()).type, event_type::flagsChanged);
}

TEST(KeyEventOf, AModifierIsAChangeOfFlags) {
  const auto event = made(61, true, kCGEventFlagMaskAlternate);
  CGEventSetType(event.get(), kCGEventFlagsChanged);
  EXPECT_EQ(
      keyEventOf(kCGEventFlagsChanged, event.get()),
      (platform::KeyEvent{.type = event_type::flagsChanged, .keyCode = 61, .flags = 0x80000, .userData = 0}));
}

TEST(KeyEventOf, TheSourcesUserDataIsTheMarker) {
  const auto source = CFRef<CGEventSourceRef>::adopt(CGEventSourceCreate(kCGEventSourceStatePrivate));
  CGEventSourceSetUserData(source.get(), ownEventMarker);
  const auto event = made(4, true, 0, source.get());
  EXPECT_EQ(keyEventOf(kCGEventKeyDown, event.get()).userData, ownEventMarker);
}

TEST(KeyEventOf, ANoticeHasOnlyItsType) {
  const auto event = made(4, true, kCGEventFlagMaskShift);
  for (const CGEventType type : {kCGEventTapDisabledByTimeout, kCGEventTapDisabledByUserInput}) {
    const platform::KeyEvent notice{
        .type = static_cast<std::uint32_t>(type), .keyCode = 0, .flags = 0, .userData = 0};
    EXPECT_EQ(keyEventOf(type, nullptr), notice);
    EXPECT_EQ(keyEventOf(type, event.get()), notice);
  }
}

TEST(KeyEventOf, AKeyWithoutAnEventHasOnlyItsType) {
  EXPECT_EQ(keyEventOf(kCGEventKeyDown, nullptr),
            (platform::KeyEvent{.type = event_type::keyDown, .keyCode = 0, .flags = 0, .userData = 0}));
}

}  // namespace
}  // namespace keyvora::macos
