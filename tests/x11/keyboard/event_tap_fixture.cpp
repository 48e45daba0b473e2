#include "tests/x11/keyboard/event_tap_fixture.h"

#include <algorithm>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {

using platform::KeyEvent;
using platform::Verdict;
namespace event_type = platform::event_type;

Verdict Catcher::operator()(const KeyEvent& event) {
  shown.push_back(event);
  if (!applications_->frontmostBundleIdentifier()) {
    armed = false;
    return Verdict::pass;
  }
  const bool withOption = (event.flags & platform::event_flag::option) != 0;
  if (event.type == event_type::flagsChanged) {
    const bool isOption = event.keyCode == key::leftOption || event.keyCode == key::rightOption;
    if (isOption && !withOption && std::exchange(optionAlone_, false)) {
      armed = !armed;
      lettersCaught_ = 0;
      if (armed) ++armings;
    }
    optionAlone_ = isOption && withOption;
    return Verdict::pass;
  }
  if (withOption) optionAlone_ = false;
  if (withOption || event.type != event_type::keyDown || !armed) return Verdict::pass;
  if (event.keyCode == key_code::none) {
    armed = false;
    return Verdict::pass;
  }
  caught.push_back(event.keyCode);
  if (++lettersCaught_ == lettersWanted_ || event.keyCode == key::escape) armed = false;
  return Verdict::swallow;
}

EventTapTest::EventTapTest() {
  sentinelSource->setUserData(sentinelMark);
  EXPECT_TRUE(target.awaitFocus());
  EXPECT_TRUE(runUntil([&] { return applications.frontmostBundleIdentifier().has_value(); }));
}

void EventTapTest::tapWith(platform::TapHandler handler) {
  tap = keyboard.createTap(keyEvents, [this, handler = std::move(handler)](const KeyEvent& event) {
    if (event.userData != sentinelMark) return handler(event);
    ++sentinelsSeen;
    return Verdict::pass;
  });
  ASSERT_NE(tap, nullptr);
  tap->enable();
  ASSERT_TRUE(awaitTap());
}

void EventTapTest::expectPressed(const std::vector<std::uint16_t>& expected, const ClientWindow& window) {
  runUntil([&] { return window.pressed().size() >= expected.size(); });
  settle();
  EXPECT_EQ(window.pressed(), expected);
}

void EventTapTest::settle() {
  constexpr std::chrono::milliseconds quiet{60};
  auto seen = target.received().size() + catcher.shown.size();
  auto since = std::chrono::steady_clock::now();
  runUntil([&] {
    const auto now = std::chrono::steady_clock::now();
    const auto count = target.received().size() + catcher.shown.size();
    if (std::exchange(seen, count) != count) since = now;
    return now - since > quiet;
  });
}

bool EventTapTest::awaitTap() {
  // The tap injects it after carrying out earlier requests, and reads its event after all earlier events.
  const auto seen = sentinelsSeen;
  for (const bool down : {true, false}) {
    const auto sentinel = keyboard.createEvent(sentinelSource.get(), sentinelKey, down);
    if (sentinel) sentinel->postToHardware();
  }
  return runUntil([&] { return sentinelsSeen > seen + 1; });
}

bool EventTapTest::awaitTapPossible() {
  return runUntil([&] {
    return keyboard.createTap(keyEvents, [](const KeyEvent&) { return Verdict::pass; }) != nullptr;
  });
}

}  // namespace keyvora::x11
