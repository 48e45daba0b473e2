#import "hosts/macos/keyboard.h"

#include <gtest/gtest.h>

#include "hosts/macos/synthetic_event.h"
#include "runner/key_names.h"
#include "runner/own_event_marker.h"

namespace keyvora::macos {
namespace {

CGEventRef eventOf(const platform::SyntheticEvent& event) {
  return static_cast<const SyntheticEvent&>(event).get();
}

TEST(Keyboard, EventsFromOurSourceCarryTheMarkerInField42) {
  EXPECT_EQ(static_cast<int>(kCGEventSourceUserData), 42);
  Keyboard keyboard;
  const auto source = keyboard.createSource();
  ASSERT_TRUE(source);
  source->setUserData(ownEventMarker);
  const auto event = keyboard.createEvent(source.get(), 4, true);
  ASSERT_TRUE(event);
  EXPECT_EQ(CGEventGetIntegerValueField(eventOf(*event), kCGEventSourceUserData), ownEventMarker);
}

TEST(Keyboard, EventsWithoutASourceCarryNoMarker) {
  Keyboard keyboard;
  const auto event = keyboard.createEvent(nullptr, 4, true);
  ASSERT_TRUE(event);
  EXPECT_NE(CGEventGetIntegerValueField(eventOf(*event), kCGEventSourceUserData), ownEventMarker);
}

TEST(Keyboard, AnEventHasTheKeyTheDirectionAndTheFlagsItWasGiven) {
  Keyboard keyboard;
  const auto event = keyboard.createEvent(nullptr, 36, false);
  ASSERT_TRUE(event);
  EXPECT_EQ(CGEventGetType(eventOf(*event)), kCGEventKeyUp);
  EXPECT_EQ(CGEventGetIntegerValueField(eventOf(*event), kCGKeyboardEventKeycode), 36);
  event->setFlags(platform::event_flag::command | platform::event_flag::shift);
  EXPECT_EQ(CGEventGetFlags(eventOf(*event)), 0x120000U);
}

TEST(Keyboard, AKeyEventBecomesAModifierChange) {
  Keyboard keyboard;
  const auto event = keyboard.createEvent(nullptr, 58, true);
  ASSERT_TRUE(event);
  event->setType(platform::event_type::flagsChanged);
  event->setFlags(platform::event_flag::option);
  EXPECT_EQ(CGEventGetType(eventOf(*event)), kCGEventFlagsChanged);
  EXPECT_EQ(CGEventGetFlags(eventOf(*event)), static_cast<CGEventFlags>(kCGEventFlagMaskAlternate));
}

TEST(Keyboard, TheDoorsNumbersAreTheSystems) {
  EXPECT_EQ(platform::event_type::keyDown, static_cast<std::uint32_t>(kCGEventKeyDown));
  EXPECT_EQ(platform::event_type::keyUp, static_cast<std::uint32_t>(kCGEventKeyUp));
  EXPECT_EQ(platform::event_type::flagsChanged, static_cast<std::uint32_t>(kCGEventFlagsChanged));
  EXPECT_EQ(platform::event_type::tapDisabledByTimeout,
            static_cast<std::uint32_t>(kCGEventTapDisabledByTimeout));
  EXPECT_EQ(platform::event_type::tapDisabledByUserInput,
            static_cast<std::uint32_t>(kCGEventTapDisabledByUserInput));
  EXPECT_EQ(platform::event_flag::shift, static_cast<std::uint64_t>(kCGEventFlagMaskShift));
  EXPECT_EQ(platform::event_flag::control, static_cast<std::uint64_t>(kCGEventFlagMaskControl));
  EXPECT_EQ(platform::event_flag::option, static_cast<std::uint64_t>(kCGEventFlagMaskAlternate));
  EXPECT_EQ(platform::event_flag::command, static_cast<std::uint64_t>(kCGEventFlagMaskCommand));
}

}  // namespace
}  // namespace keyvora::macos
