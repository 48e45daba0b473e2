#include <gtest/gtest.h>

#include <X11/X.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <tuple>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/queues.h"
#include "tests/x11/keyboard/event_tap_fixture.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using namespace platform::event_flag;
namespace event_type = platform::event_type;
using Keys = std::vector<std::uint16_t>;

constexpr std::int64_t marker = 0x5E7A91C3;
constexpr platform::ProcessIdentifier targetProcess = 4711;

class PostingTest : public EventTapTest {
 protected:
  PostingTest() { source->setUserData(marker); }

  std::unique_ptr<platform::SyntheticEvent> event(std::uint16_t keyCode, bool down, std::uint64_t flags = 0) {
    auto made = keyboard.createEvent(source.get(), keyCode, down);
    EXPECT_NE(made, nullptr);
    made->setFlags(flags);
    return made;
  }

  /// The strokes that a window received, without their times.
  static std::vector<std::tuple<std::uint16_t, bool, unsigned>> strokes(const ClientWindow& window) {
    std::vector<std::tuple<std::uint16_t, bool, unsigned>> all;
    for (const auto& key : window.received()) all.emplace_back(key.keyCode, key.down, key.state);
    return all;
  }

  std::unique_ptr<platform::EventSource> source = keyboard.createSource();
};

TEST_F(PostingTest, AKeyReachesTheProcessWithItsModifiers) {
  event(key::digit1, true, command | shift)->postTo(targetProcess);
  event(key::digit1, false, command | shift)->postTo(targetProcess);
  ASSERT_TRUE(runUntil([&] { return target.received().size() == 2; }));
  const unsigned state = ControlMask | ShiftMask;
  EXPECT_EQ(strokes(target),
            (decltype(strokes(target)){{key::digit1, true, state}, {key::digit1, false, state}}));
  EXPECT_TRUE(target.received().front().wasSent);
}

TEST_F(PostingTest, ModifierChangesCarryTheStateBeforeThem) {
  struct Step {
    std::uint16_t keyCode;
    bool down;
    std::uint64_t flags;
  };
  for (const auto& step : std::initializer_list<Step>{{key::leftShift, true, shift},
                                                      {key::leftOption, true, shift | option},
                                                      {key::leftOption, false, shift},
                                                      {key::leftShift, false, 0}}) {
    const auto made = event(step.keyCode, step.down);
    made->setType(event_type::flagsChanged);
    made->setFlags(step.flags);
    made->postTo(targetProcess);
  }
  ASSERT_TRUE(runUntil([&] { return target.received().size() == 4; }));
  EXPECT_EQ(strokes(target), (decltype(strokes(target)){{key::leftShift, true, 0},
                                                        {key::leftOption, true, ShiftMask},
                                                        {key::leftOption, false, ShiftMask | Mod1Mask},
                                                        {key::leftShift, false, ShiftMask}}));
}

TEST_F(PostingTest, KeysSentToAProcessAreInvisibleToTheTap) {
  tapWithCatcher();
  event(key::leftOption, true)->postTo(targetProcess);
  event(key::leftOption, false)->postTo(targetProcess);
  event(key::h, true)->postTo(targetProcess);
  expectPressed({key::leftOption, key::h});
  EXPECT_TRUE(catcher.shown.empty());
}

TEST_F(PostingTest, EachKeyGoesToTheWindowThatIsActiveByThen) {
  event(key::a, true)->postTo(targetProcess);
  ClientWindow dialog(display.name(), {.transientFor = target.window()});
  ASSERT_TRUE(dialog.awaitFocus());
  event(key::b, true)->postTo(targetProcess);
  expectPressed({key::b}, dialog);
  EXPECT_EQ(target.pressed(), Keys{key::a});
}

TEST_F(PostingTest, AProcessInTheBackgroundGetsItsKeysInItsTopmostWindow) {
  ClientWindow second(display.name(), {});
  ASSERT_TRUE(second.awaitFocus());
  ClientWindow elsewhere(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(elsewhere.awaitFocus());
  event(key::a, true)->postTo(targetProcess);
  expectPressed({key::a}, second);
  EXPECT_TRUE(target.pressed().empty());
  EXPECT_TRUE(elsewhere.pressed().empty());
}

TEST_F(PostingTest, AWindowOfAnotherApplicationInTheSameProcessIsNotMeant) {
  ClientWindow writer(display.name(), {.instanceName = "libreoffice", .className = "libreoffice-writer"});
  ASSERT_TRUE(writer.awaitFocus());
  event(key::a, true)->postTo(targetProcess);
  expectPressed({key::a});
  EXPECT_TRUE(writer.pressed().empty());
}

TEST_F(PostingTest, KeysGoToTheWindowWhoseKeyWasSwallowedLast) {
  tapWithCatcher();
  catcher = Catcher(applications, 1);
  user.tap({key::leftOption, key::h});
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 1; }));
  ClientWindow second(display.name(), {});
  ASSERT_TRUE(second.awaitFocus());
  event(key::a, true)->postTo(targetProcess);
  expectPressed({key::leftOption, key::a});
  user.tap({key::d});  // passed, so it changes nothing
  expectPressed({key::d}, second);
  event(key::b, true)->postTo(targetProcess);
  expectPressed({key::leftOption, key::a, key::b});
  user.tap({key::leftOption, key::h});
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 2; }));
  event(key::s, true)->postTo(targetProcess);
  expectPressed({key::d, key::leftOption, key::s}, second);
}

TEST_F(PostingTest, KeysGoToADialogOfTheTargetsWindowAndToNoOther) {
  targetWindow.set(target.window());
  ClientWindow second(display.name(), {});
  ASSERT_TRUE(second.awaitFocus());
  ClientWindow dialog(display.name(), {.transientFor = target.window()});
  ASSERT_TRUE(dialog.activate());
  event(key::a, true)->postTo(targetProcess);
  expectPressed({key::a}, dialog);
  ClientWindow other(display.name(), {.transientFor = second.window()});
  ASSERT_TRUE(other.activate());
  event(key::b, true)->postTo(targetProcess);
  expectPressed({key::a, key::b}, dialog);
  EXPECT_TRUE(target.pressed().empty());
  EXPECT_TRUE(second.pressed().empty());
  EXPECT_TRUE(other.pressed().empty());
}

TEST_F(PostingTest, KeysForAWindowThatIsGoneOrAnotherProcesssAreDropped) {
  {
    const ClientWindow second(display.name(), {});
    ASSERT_TRUE(second.awaitFocus());
    targetWindow.set(second.window());
  }
  ASSERT_TRUE(target.activate());
  event(key::a, true)->postTo(targetProcess);
  targetWindow.set(target.window());
  event(key::b, true)->postTo(targetProcess + 1);
  event(key::s, true)->postTo(targetProcess);
  expectPressed({key::s});
}

TEST_F(PostingTest, KeysForADocumentOfLibreOfficeThatIsNotInFrontAreDropped) {
  const ClientWindow::Options calc{
      .instanceName = "libreoffice", .className = "libreoffice-calc", .process = 20};
  ClientWindow first(display.name(), calc);
  ASSERT_TRUE(first.awaitFocus());
  ClientWindow second(display.name(), calc);
  ASSERT_TRUE(second.awaitFocus());
  targetWindow.set(first.window());
  event(key::a, true)->postTo(20);
  ASSERT_TRUE(target.activate());
  event(key::b, true)->postTo(20);  // it was not the last active one
  ASSERT_TRUE(first.activate());
  event(key::s, true)->postTo(20);
  ASSERT_TRUE(target.activate());
  event(key::d, true)->postTo(20);
  expectPressed({key::s, key::d}, first);
  EXPECT_TRUE(second.pressed().empty());
}

TEST_F(PostingTest, APlanKeepsTheWindowThatItWasGivenFor) {
  ClientWindow second(display.name(), {});
  ASSERT_TRUE(second.awaitFocus());
  targetWindow.set(target.window());
  std::promise<void> given;
  std::atomic<bool> walked = false;
  Queues queues(targetWindow);
  queues.walk({[&] {
                 given.get_future().wait();
                 return std::chrono::microseconds(0);
               },
               [&] {
                 event(key::a, true)->postTo(targetProcess);
                 return std::chrono::microseconds(0);
               },
               [&] {
                 walked = true;
                 return std::chrono::microseconds(0);
               }});
  targetWindow.set(second.window());
  given.set_value();
  ASSERT_TRUE(runUntil([&] { return walked.load(); }));
  event(key::b, true)->postTo(targetProcess);
  expectPressed({key::b}, second);
  EXPECT_EQ(target.pressed(), Keys{key::a});
}

TEST_F(PostingTest, AProcessWithoutAWindowGetsNothing) {
  event(key::a, true)->postTo(12345);
  event(key::b, true)->postTo(targetProcess);
  expectPressed({key::b});
}

TEST_F(PostingTest, AKeyThatTheKeyboardLacksCannotBeMade) {
  EXPECT_EQ(keyboard.createEvent(source.get(), 0xFFFF, true), nullptr);
  EXPECT_EQ(keyboard.createEvent(source.get(), 127, true), nullptr);
  EXPECT_EQ(keyboard.createEvent(nullptr, 0x1000, false), nullptr);
}

TEST_F(PostingTest, KeysAtTheHardwareLevelReachTheFocusAndCarryTheMarker) {
  std::vector<KeyEvent> all;
  tapWith([&](const KeyEvent& shown) {
    all.push_back(shown);
    return Verdict::pass;
  });
  all.clear();
  user.tap({key::leftOption});
  ASSERT_TRUE(runUntil([&] { return all.size() == 2; }));
  event(key::b, true, shift)->postToHardware();
  event(key::b, false, shift)->postToHardware();
  expectPressed({key::leftOption, key::leftShift, key::b});
  EXPECT_EQ(all, (std::vector<KeyEvent>{{event_type::flagsChanged, key::leftOption, option, 0},
                                        {event_type::flagsChanged, key::leftOption, 0, 0},
                                        {event_type::flagsChanged, key::leftShift, shift, marker},
                                        {event_type::keyDown, key::b, shift, marker},
                                        {event_type::flagsChanged, key::leftShift, shift, marker},
                                        {event_type::keyUp, key::b, shift, marker}}));
}

TEST_F(PostingTest, OwnKeysAreToldFromThoseOfOtherProgramsAndOfTheUser) {
  constexpr int rounds = 60;
  int own = 0;
  int foreign = 0;
  tapWith([&](const KeyEvent& event) {
    if (event.type == event_type::keyDown) ++(event.userData == marker ? own : foreign);
    return Verdict::pass;
  });
  own = foreign = 0;
  Typist other(display.name(), Typist::Device::xtest);
  std::thread typing([&] {
    for (int i = 0; i < rounds; ++i) other.tap({key::d});
  });
  std::thread posting([&] {
    for (int i = 0; i < rounds; ++i) {
      event(key::s, true)->postToHardware();
      event(key::s, false)->postToHardware();
    }
  });
  for (int i = 0; i < rounds; ++i) user.tap({key::leftOption, key::a});
  EXPECT_TRUE(runUntil([&] { return target.pressed().size() == std::size_t(4 * rounds); }));
  typing.join();
  posting.join();
  settle();
  const auto pressed = target.pressed();
  EXPECT_EQ(std::ranges::count(pressed, key::s), rounds);
  EXPECT_EQ(std::ranges::count(pressed, key::d), rounds);
  EXPECT_EQ(std::ranges::count(pressed, key::a), rounds);
  EXPECT_EQ(own, rounds);
  EXPECT_GE(foreign, rounds) << "the letters behind an Option tap are all seen";
  EXPECT_LE(foreign, 2 * rounds);
}

TEST_F(PostingTest, KeysThatAnotherProgramTypedBeforeAreNotTakenForOwn) {
  std::vector<KeyEvent> all;
  tapWith([&](const KeyEvent& shown) {
    all.push_back(shown);
    const auto verdict = catcher(shown);
    if (shown.keyCode == key::h && shown.type == event_type::keyDown) {
      event(key::s, true)->postToHardware();
      event(key::s, false)->postToHardware();
    }
    return verdict;
  });
  catcher = Catcher(applications, 1);
  all.clear();
  Typist other(display.name(), Typist::Device::xtest);
  // All are sent before the tap reads the first.
  other.tap({key::leftOption, key::h, key::a});
  ASSERT_TRUE(runUntil([&] { return target.pressed().size() == 3; }));
  settle();
  EXPECT_EQ(catcher.caught, Keys{key::h});
  EXPECT_EQ(target.pressed(), (Keys{key::leftOption, key::a, key::s}));
  const auto isA = [](const KeyEvent& each) { return each.keyCode == key::a && each.userData == 0; };
  EXPECT_TRUE(std::ranges::any_of(all, isA));
  const auto isOwn = [](const KeyEvent& each) { return each.userData == marker; };
  EXPECT_EQ(std::ranges::count_if(all, isOwn), 2);
}

TEST_F(PostingTest, WithoutATapKeysAtTheHardwareLevelStillArrive) {
  event(key::a, true, command)->postToHardware();
  event(key::a, false, command)->postToHardware();
  ASSERT_TRUE(runUntil([&] { return target.received().size() == 4; }));
  EXPECT_EQ(target.pressed(), (Keys{key::leftCommand, key::a}));
  EXPECT_EQ(target.received()[1].state, unsigned(ControlMask));
}

TEST_F(PostingTest, PostingInsideTheHandlerComesAfterTheSwallowedKeyAndDoesNotWait) {
  auto shortest = std::chrono::steady_clock::duration::max();
  tapWith([&](const KeyEvent& shown) {
    const auto verdict = catcher(shown);
    if (verdict == Verdict::swallow) {
      const auto start = std::chrono::steady_clock::now();
      event(key::digit1, true, command)->postTo(targetProcess);
      event(key::digit1, false, command)->postTo(targetProcess);
      shortest = std::min(shortest, std::chrono::steady_clock::now() - start);
    }
    return verdict;
  });
  std::vector<std::uint16_t> expected;
  for (int times = 0; times < 5; ++times) {
    catcher = Catcher(applications, 1);
    user.tap({key::leftOption, key::h});
    expected.insert(expected.end(), {key::leftOption, key::digit1});
    expectPressed(expected);
  }
  // Waiting would take as long as a verdict may, every time.
  EXPECT_LT(shortest, verdictLimit / 2);
}

TEST(Posting, WithoutADisplayNothingCanBeMade) {
  CurrentTap tap;
  TargetWindow targetWindow;
  Keyboard keyboard(":4711", KEYVORA_TAP_PROGRAM, tap, targetWindow);
  EXPECT_EQ(keyboard.createSource(), nullptr);
  EXPECT_EQ(keyboard.createEvent(nullptr, 0, true), nullptr);
  EXPECT_EQ(keyboard.createTap(keyEvents, [](const KeyEvent&) { return Verdict::pass; }), nullptr);
}

}  // namespace
}  // namespace keyvora::x11
