#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <algorithm>
#include <thread>

#include "hosts/x11/keyboard/key_codes.h"
#include "tests/x11/keyboard/event_tap_fixture.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using std::vector;
using std::chrono::milliseconds;
using Keys = vector<std::uint16_t>;

TEST_F(EventTapTest, LettersAfterALoneOptionTapAreSwallowedAndTheRestArrives) {
  tapWithCatcher();
  user.tap({key::leftOption, key::h, key::f, key::a, key::b});
  expectPressed({key::leftOption, key::a, key::b});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f}));
}

TEST_F(EventTapTest, EventsAreInTheTermsOfMacOS) {
  tapWithCatcher();
  user.tap({key::leftOption, key::h});
  user.chord({key::leftShift}, key::f);
  runUntil([&] { return catcher.shown.size() == 8; });
  using namespace platform::event_type;
  using namespace platform::event_flag;
  EXPECT_EQ(catcher.shown, (vector<KeyEvent>{{flagsChanged, key::leftOption, option, 0},
                                             {flagsChanged, key::leftOption, 0, 0},
                                             {keyDown, key::h, 0, 0},
                                             {keyUp, key::h, 0, 0},
                                             {flagsChanged, key::leftShift, shift, 0},
                                             {keyDown, key::f, shift, 0},
                                             {keyUp, key::f, shift, 0},
                                             {flagsChanged, key::leftShift, 0, 0}}));
}

TEST_F(EventTapTest, OnlyEventsOfTheMaskAreShown) {
  vector<KeyEvent> shown;
  tap = keyboard.createTap(1U << platform::event_type::keyDown, [&](const KeyEvent& event) {
    shown.push_back(event);
    return Verdict::pass;
  });
  ASSERT_NE(tap, nullptr);
  tap->enable();
  // A key goes through the tap after enabling; its press is of the expected type.
  keyboard.createEvent(nullptr, sentinelKey, true)->postToHardware();
  keyboard.createEvent(nullptr, sentinelKey, false)->postToHardware();
  ASSERT_TRUE(runUntil([&] { return shown.size() == 1; }));
  shown.clear();
  user.tap({key::leftOption, key::h});
  expectPressed({key::leftOption, key::h});
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown.front().keyCode, key::h);
}

TEST_F(EventTapTest, ReleasesOfSwallowedKeysArrive) {
  tapWithCatcher();
  user.tap({key::leftOption, key::h});
  ASSERT_TRUE(runUntil([&] { return target.received().size() == 3; }));
  EXPECT_EQ(target.received().back().keyCode, key::h);
  EXPECT_FALSE(target.received().back().down);
}

TEST_F(EventTapTest, OrdinaryTypingIsNotEvenSeen) {
  tapWithCatcher();
  user.tap({key::a, key::b});
  user.chord({key::leftShift}, key::d);
  expectPressed({key::a, key::b, key::leftShift, key::d});
  EXPECT_EQ(catcher.shown, vector<KeyEvent>{});
}

TEST_F(EventTapTest, AfterASequenceTypingIsUnseenAgainFromTheSecondKeyOn) {
  tapWithCatcher();
  user.tap({key::leftOption, key::h, key::f, key::a});
  expectPressed({key::leftOption, key::a});
  catcher.shown.clear();
  user.tap({key::b, key::d});
  expectPressed({key::leftOption, key::a, key::b, key::d});
  EXPECT_EQ(catcher.shown, vector<KeyEvent>{});
  user.tap({key::leftOption, key::h, key::f});
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 4; }));
}

TEST_F(EventTapTest, AModifierThatWasHeldBeforeIsAFlagOfTheOptionTap) {
  tapWithCatcher();
  user.press(key::leftShift);
  expectPressed({key::leftShift});
  EXPECT_EQ(catcher.shown, vector<KeyEvent>{});
  user.tap({key::leftOption});
  user.release(key::leftShift);
  runUntil([&] { return catcher.shown.size() == 3; });
  using namespace platform::event_type;
  using namespace platform::event_flag;
  // Its release is reported without its code, because its press was not held.
  EXPECT_EQ(catcher.shown, (vector<KeyEvent>{{flagsChanged, key::leftOption, option | shift, 0},
                                             {flagsChanged, key::leftOption, shift, 0},
                                             {flagsChanged, key_code::none, 0, 0}}));
}

TEST_F(EventTapTest, BurstsLoseAndLeakNothing) {
  constexpr int bursts = 300;
  tapWithCatcher();
  Keys expected;
  Keys caught;
  for (int i = 0; i < bursts; ++i) {
    user.tap({key::leftOption, key::h, key::f, key::a, key::b});
    expected.insert(expected.end(), {key::leftOption, key::a, key::b});
    caught.insert(caught.end(), {key::h, key::f});
  }
  expectPressed(expected);
  EXPECT_EQ(catcher.caught, caught);
  EXPECT_EQ(catcher.armings, bursts);
}

TEST_F(EventTapTest, BurstsSurviveASlowHandler) {
  constexpr int bursts = 40;
  tapWith([this](const KeyEvent& event) {
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    return catcher(event);
  });
  Keys expected;
  for (int i = 0; i < bursts; ++i) {
    user.tap({key::leftOption, key::h, key::f, key::a, key::b});
    expected.insert(expected.end(), {key::leftOption, key::a, key::b});
  }
  expectPressed(expected);
  EXPECT_EQ(catcher.armings, bursts);
}

TEST_F(EventTapTest, ASecondTypistLosesNothing) {
  constexpr int rounds = 100;
  tapWithCatcher();
  Typist other(display.name(), Typist::Device::xtest);
  std::thread typing([&] {
    for (int i = 0; i < rounds; ++i) other.tap({key::d, key::s});
  });
  for (int i = 0; i < rounds; ++i) user.tap({key::leftOption, key::h, key::f, key::a});
  typing.join();
  // Which letters are swallowed depends on the timing; none may be lost or doubled.
  const auto total = [&] { return target.pressed().size() + catcher.caught.size(); };
  EXPECT_TRUE(runUntil([&] { return total() == std::size_t(6 * rounds); })) << total();
  settle();
  EXPECT_EQ(total(), std::size_t(6 * rounds));
  auto all = target.pressed();
  all.insert(all.end(), catcher.caught.begin(), catcher.caught.end());
  for (const auto key : {key::leftOption, key::h, key::f, key::a, key::d, key::s}) {
    EXPECT_EQ(std::ranges::count(all, key), rounds) << key;
  }
}

TEST_F(EventTapTest, RolledOverKeysKeepTheirOrder) {
  tapWithCatcher();
  user.press(key::leftOption);
  user.release(key::leftOption);
  user.press(key::h);
  user.press(key::f);
  user.release(key::h);
  user.press(key::a);
  user.release(key::f);
  user.press(key::b);
  user.release(key::a);
  user.release(key::b);
  expectPressed({key::leftOption, key::a, key::b});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f}));
}

TEST_F(EventTapTest, ASwallowedKeyDoesNotRepeatUntilItIsReleased) {
  user.setRepetition(milliseconds(200), milliseconds(25));
  Catcher one(applications, 1);
  tapWith([&](const KeyEvent& event) { return one(event); });
  user.tap({key::leftOption});
  user.press(key::h);
  ASSERT_TRUE(runUntil([&] { return one.caught.size() == 1; }));
  runUntil([] { return false; }, milliseconds(700));
  EXPECT_EQ(one.caught, Keys{key::h});
  EXPECT_EQ(target.pressed(), Keys{key::leftOption});
  user.release(key::h);

  user.press(key::h);
  EXPECT_TRUE(runUntil([&] { return target.pressed().size() > 4; })) << "as the user has it set";
  user.release(key::h);
}

TEST_F(EventTapTest, ASwallowedKeyDoesNotRepeatIntoAnotherWindowEither) {
  user.setRepetition(milliseconds(200), milliseconds(25));
  tapWithCatcher();
  user.tap({key::leftOption});
  user.press(key::h);
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 1; }));
  // As when an action opens a window.
  ClientWindow elsewhere(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(elsewhere.awaitFocus());
  runUntil([] { return false; }, milliseconds(700));
  EXPECT_EQ(elsewhere.pressed(), Keys{});
  user.release(key::h);
}

TEST_F(EventTapTest, ASwallowedKeyDoesNotRepeatWhileTheTapWaitsForMore) {
  user.setRepetition(milliseconds(200), milliseconds(25));
  tapWithCatcher();
  user.tap({key::leftOption});
  user.press(key::h);
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 1; }));
  runUntil([] { return false; }, milliseconds(700));
  EXPECT_EQ(catcher.caught, Keys{key::h});
  user.release(key::h);
  user.tap({key::h});
  EXPECT_TRUE(runUntil([&] { return catcher.caught.size() == 2; })) << "and is swallowed when pressed anew";
}

TEST_F(EventTapTest, OptionWithALetterIsTheApplications) {
  tapWithCatcher();
  user.chord({key::leftOption}, key::h);
  user.tap({key::f});
  expectPressed({key::leftOption, key::h, key::f});
  EXPECT_EQ(catcher.armings, 0);
}

TEST_F(EventTapTest, OptionWithShiftDoesNotArm) {
  tapWithCatcher();
  user.chord({key::leftOption}, key::leftShift);
  user.tap({key::h});
  expectPressed({key::leftOption, key::leftShift, key::h});
  EXPECT_EQ(catcher.armings, 0);
}

TEST_F(EventTapTest, EitherOptionKeyArms) {
  tapWithCatcher();
  user.tap({key::rightOption, key::h, key::f, key::a});
  expectPressed({key::rightOption, key::a});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f}));
}

TEST_F(EventTapTest, ThirdLevelCharactersAreNeverSwallowed) {
  display.setLayout("de");
  tapWithCatcher();
  user.tap({key::leftOption});
  user.chord({key::rightOption}, key::q);
  user.tap({key::h});
  expectPressed({key::leftOption, key::none, key::q});
  const auto received = target.received();
  const auto at = std::ranges::find(received, key::q, &ReceivedKey::keyCode);
  ASSERT_NE(at, received.end());
  EXPECT_EQ(at->symbol, unsigned(XK_at));
  EXPECT_EQ(catcher.caught, Keys{key::h}) << "it stays armed";
}

TEST_F(EventTapTest, KeysAreTakenByTheirPlaceUnderAnyLayout) {
  tapWithCatcher();
  Keys expected;
  for (const auto& [layout, variant] :
       std::initializer_list<std::pair<const char*, const char*>>{{"fr", ""}, {"de", ""}, {"us", "dvorak"}}) {
    display.setLayout(layout, variant);
    Typist typist(display.name(), Typist::Device::hardware);
    catcher.caught.clear();
    typist.tap({key::leftOption, key::h, key::q, key::a});
    expected.insert(expected.end(), {key::leftOption, key::a});
    expectPressed(expected);
    EXPECT_EQ(catcher.caught, (Keys{key::h, key::q})) << layout << variant;
  }
}

TEST_F(EventTapTest, AReleaseWithoutAPressIsNone) {
  tapWithCatcher();
  user.press(key::leftOption);
  user.release(key::leftOption);
  user.release(key::leftOption);
  ASSERT_TRUE(runUntil([&] { return catcher.armed; }));
  ASSERT_TRUE(awaitTap());
  EXPECT_EQ(catcher.shown.size(), 2U);
  EXPECT_TRUE(catcher.armed);
}

TEST_F(EventTapTest, WhileTheApplicationHasTheKeyboardNothingArmsOrIsSwallowed) {
  tapWithCatcher();
  ASSERT_TRUE(target.grabKeyboard());
  user.tap({key::leftOption, key::h});
  expectPressed({key::leftOption, key::h});
  EXPECT_EQ(catcher.armings, 0);

  target.ungrabKeyboard();
  user.tap({key::leftOption});
  ASSERT_TRUE(runUntil([&] { return catcher.armed; }));
  ASSERT_TRUE(target.grabKeyboard());
  user.tap({key::h});
  expectPressed({key::leftOption, key::h, key::leftOption, key::h});
  EXPECT_FALSE(catcher.armed);
  EXPECT_TRUE(catcher.caught.empty());
}

TEST_F(EventTapTest, TypingElsewhereIsToldAndDisarms) {
  tapWithCatcher();
  ClientWindow elsewhere(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(elsewhere.awaitFocus());
  ASSERT_TRUE(target.activate());
  user.tap({key::leftOption});
  ASSERT_TRUE(runUntil([&] { return catcher.armed; }));
  ASSERT_TRUE(elsewhere.activate());
  user.tap({key::h});
  expectPressed({key::h}, elsewhere);
  EXPECT_FALSE(catcher.armed);
  EXPECT_EQ(catcher.shown.back().keyCode, key_code::none) << "what is typed elsewhere is nobody's business";

  settle();
  catcher.shown.clear();
  user.tap({key::f, key::a});
  user.tap({key::leftOption});
  expectPressed({key::h, key::f, key::a, key::leftOption}, elsewhere);
  EXPECT_EQ(catcher.shown, vector<KeyEvent>{}) << "and all that follows is not even seen";
}

TEST_F(EventTapTest, WindowsAndDialogsAreTappedAsTheyComeAndGo) {
  tapWithCatcher();
  {
    ClientWindow dialog(display.name(), {.transientFor = target.window()});
    ASSERT_TRUE(dialog.awaitFocus());
    ASSERT_TRUE(awaitTap());
    user.tap({key::leftOption, key::h, key::f, key::a});
    expectPressed({key::leftOption, key::a}, dialog);
  }
  ASSERT_TRUE(target.awaitFocus());
  ASSERT_TRUE(awaitTap());
  user.tap({key::leftOption, key::h, key::f, key::b});
  expectPressed({key::leftOption, key::b});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f, key::h, key::f}));
}

TEST_F(EventTapTest, TheWindowManagersShortcutsWork) {
  tapWithCatcher();
  // The server reports a new keyboard map when another keyboard types than before; the window manager then
  // releases its shortcuts and grabs them again. Let it do so now: the sentinels came from XTEST's keyboard.
  user.tap({key::a});
  expectPressed({key::a});
  ClientWindow other(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(other.awaitFocus());
  ASSERT_TRUE(target.activate());
  const auto shown = target.windowsOnScreen();
  user.press(key::leftOption);
  user.tap({key::tab});
  // The window manager grabs the keyboard to follow the keys, and then shows the list of windows. It would
  // miss a release before the grab.
  ASSERT_TRUE(runUntil([&] { return target.windowsOnScreen() > shown; }));
  user.release(key::leftOption);
  EXPECT_TRUE(other.awaitFocus());
  EXPECT_EQ(catcher.armings, 0);
}

TEST_F(EventTapTest, ARestartOfTheWindowManagerIsSurvived) {
  tapWithCatcher();
  display.endWindowManager();
  display.startWindowManager();
  ASSERT_TRUE(target.activate());
  ASSERT_TRUE(awaitTap());
  user.tap({key::leftOption, key::h, key::f, key::a});
  expectPressed({key::leftOption, key::a});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f}));
}

}  // namespace
}  // namespace keyvora::x11
