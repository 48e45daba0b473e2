#include <gtest/gtest.h>

#include <thread>
#include <utility>

#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/tap/key_devices.h"
#include "hosts/x11/tap/key_grabs.h"
#include "tests/x11/keyboard/event_tap_fixture.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Keys = std::vector<std::uint16_t>;

using EventTapGuardTest = EventTapTest;

TEST_F(EventTapGuardTest, AStalledVerdictHoldsTheKeyboardForASecondAndThenAllWorksAgain) {
  bool stall = true;
  int disabled = 0;
  // Until the window has all keys: with the keyboard still held it would be until the end of patience.
  const auto stalled = [&] {
    const auto end = Clock::now() + patience;
    while (target.pressed().size() < 4 && Clock::now() < end) std::this_thread::sleep_for(milliseconds(10));
  };
  tapWith([&](const KeyEvent& event) {
    if (event.type == platform::event_type::tapDisabledByTimeout) {
      ++disabled;
      tap->enable();
      return Verdict::pass;
    }
    if (event.keyCode == key::h && std::exchange(stall, false)) stalled();
    return catcher(event);
  });
  const auto typed = Clock::now();
  user.tap({key::leftOption, key::h, key::a, key::b});
  expectPressed({key::leftOption, key::h, key::a, key::b});
  for (const auto& key : target.received()) {
    EXPECT_LT(key.at - typed, patience / 2) << key.keyCode;
    if (key.keyCode == key::h && key.down) {
      EXPECT_GT(key.at - typed, milliseconds(900));
    }
  }
  EXPECT_EQ(disabled, 1);
  ASSERT_TRUE(awaitTap());

  catcher = Catcher(applications);
  user.tap({key::leftOption, key::h, key::f, key::a});
  expectPressed({key::leftOption, key::h, key::a, key::b, key::leftOption, key::a});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f})) << "enabling grabs again";
  EXPECT_EQ(disabled, 1);
}

TEST_F(EventTapGuardTest, ATapThatWaitsForLettersStillDoesAfterATimeOut) {
  int disabled = 0;
  tapWith([&](const KeyEvent& event) {
    if (event.type == platform::event_type::tapDisabledByTimeout) {
      ++disabled;
      tap->enable();
      return Verdict::pass;
    }
    return catcher(event);
  });
  user.tap({key::leftOption});
  ASSERT_TRUE(runUntil([&] { return catcher.armed; }));
  user.tap({key::h});
  std::this_thread::sleep_for(milliseconds(1300));  // the main loop does not run meanwhile
  ASSERT_TRUE(runUntil([&] { return disabled == 1; }));
  ASSERT_TRUE(awaitTap());
  EXPECT_EQ(target.pressed(), (Keys{key::leftOption, key::h})) << "the late key went through";
  EXPECT_TRUE(catcher.caught.empty()) << "and was never shown late";
  user.tap({key::f});
  ASSERT_TRUE(runUntil([&] { return !catcher.caught.empty(); }));
  EXPECT_EQ(catcher.caught, Keys{key::f});
}

TEST_F(EventTapGuardTest, AnActionInsideTheHandlerHoldsNothingBack) {
  tapWith([&](const KeyEvent& event) {
    const auto verdict = catcher(event);
    if (verdict == Verdict::swallow && event.keyCode == key::f) {
      currentTap.letGo();
      std::this_thread::sleep_for(milliseconds(600));
    }
    return verdict;
  });
  user.tap({key::leftOption, key::h});
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 1; }));
  user.press(key::f);
  const auto pressed = Clock::now();
  ASSERT_TRUE(runUntil([&] { return catcher.caught.size() == 2; }));
  user.release(key::f);
  EXPECT_GT(Clock::now() - pressed, milliseconds(600)) << "the handler did act";
  expectPressed({key::leftOption});
}

TEST_F(EventTapGuardTest, TheKeyboardIsFreeWhileAnActionRuns) {
  bool free = false;
  tapWith([&](const KeyEvent& event) {
    const auto verdict = catcher(event);
    if (verdict == Verdict::swallow) {
      currentTap.letGo();
      free = target.grabKeyboard();  // fails while another client keeps the keyboard frozen
      target.ungrabKeyboard();
    }
    return verdict;
  });
  user.tap({key::leftOption, key::h});
  ASSERT_TRUE(runUntil([&] { return !catcher.caught.empty(); }));
  EXPECT_TRUE(free);
}

TEST_F(EventTapGuardTest, ASecondTapIsRefusedUntilTheFirstIsGone) {
  tapWithCatcher();
  CurrentTap otherTap;
  Keyboard other(display.name(), KEYVORA_TAP_PROGRAM, otherTap, targetWindow);
  const auto pass = [](const KeyEvent&) { return Verdict::pass; };
  EXPECT_EQ(other.createTap(keyEvents, pass), nullptr);
  EXPECT_EQ(keyboard.createTap(keyEvents, pass), nullptr);
  tap.reset();
  EXPECT_NE(other.createTap(keyEvents, pass), nullptr);
}

TEST_F(EventTapGuardTest, ATapIsRefusedWhileAnotherProgramHasTheKeys) {
  const auto pass = [](const KeyEvent&) { return Verdict::pass; };
  {
    const auto connection = Connection::open(display.name());
    const KeyMap keys(connection->get());
    KeyGrabs rival(connection->get(), findKeyDevices(connection->get())->master);
    ASSERT_TRUE(rival.apply(KeyGrabs::Extent::everyKey, {target.window()}, keys));
    EXPECT_EQ(keyboard.createTap(keyEvents, pass), nullptr);
  }
  EXPECT_TRUE(awaitTapPossible());
}

TEST_F(EventTapGuardTest, KeysAreCaughtAsSoonAsEnablingReturnsEvenFromABusyServer) {
  tap = keyboard.createTap(keyEvents, [this](const KeyEvent& event) { return catcher(event); });
  ASSERT_NE(tap, nullptr);
  const auto busy = Connection::open(display.name());
  XGrabServer(busy->get());  // as window managers do while they start
  XSync(busy->get(), False);
  std::thread serving([&] {
    std::this_thread::sleep_for(milliseconds(500));
    XUngrabServer(busy->get());
    XSync(busy->get(), False);
  });
  tap->enable();
  user.tap({key::leftOption, key::h, key::f, key::a});
  serving.join();
  expectPressed({key::leftOption, key::a});
  EXPECT_EQ(catcher.caught, (Keys{key::h, key::f}));
}

TEST_F(EventTapGuardTest, ATapThatIsGoneOrNeverEnabledLeavesTheKeyboardAlone) {
  tap = keyboard.createTap(keyEvents, [](const KeyEvent&) { return Verdict::swallow; });
  ASSERT_NE(tap, nullptr);
  user.tap({key::leftOption, key::a});
  expectPressed({key::leftOption, key::a});
  tap->enable();
  tap.reset();
  user.tap({key::leftOption, key::a});
  expectPressed({key::leftOption, key::a, key::leftOption, key::a});
}

TEST_F(EventTapGuardTest, KillingAnArmedProgramLeavesAWorkingKeyboard) {
  Child program({KEYVORA_TAP_PROCESS, display.name()}, {});
  ASSERT_TRUE(runUntil([&] { return target.sentinels() > 0; }));
  user.tap({key::leftOption, key::a});
  expectPressed({key::leftOption});
  program.kill();
  EXPECT_TRUE(awaitTapPossible());
  user.tap({key::a, key::leftOption, key::b});
  expectPressed({key::leftOption, key::a, key::leftOption, key::b});
}

}  // namespace
}  // namespace keyvora::x11
