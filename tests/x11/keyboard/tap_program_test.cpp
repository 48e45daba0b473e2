#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

#include "tests/x11/keyboard/event_tap_fixture.h"

/// The tap's program and its owner, when one of them is stopped or killed: keys reach their windows.
namespace keyvora::x11 {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Keys = std::vector<std::uint16_t>;

/// The only child of this process.
pid_t childOf(pid_t process) {
  std::ifstream children("/proc/" + std::to_string(process) + "/task/" + std::to_string(process) +
                         "/children");
  pid_t child = -1;
  children >> child;
  return child;
}

class TapProgramTest : public EventTapTest {
 protected:
  /// Starts a program with a tap that swallows every key press, and waits until the tap is enabled.
  void start(const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command{KEYVORA_TAP_PROCESS, display.name()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    owner = Child(command, {});
    ASSERT_TRUE(awaitEnabled(1));
  }

  /// Waits until the owner has enabled its tap this many times.
  bool awaitEnabled(int times) {
    return runUntil([&] { return target.sentinels() >= times; });
  }

  void expectKeysAreSwallowedFrom(const Keys& before) {
    user.tap({key::leftOption, key::a, key::b});
    auto expected = before;
    expected.push_back(key::leftOption);
    expectPressed(expected);
  }

  Child owner;
};

TEST_F(TapProgramTest, AStoppedOwnerHoldsTheKeyboardForASecondAtMost) {
  start();
  expectKeysAreSwallowedFrom({});
  kill(owner.pid(), SIGSTOP);
  const auto typed = Clock::now();
  user.tap({key::a, key::leftOption, key::b});
  expectPressed({key::leftOption, key::a, key::leftOption, key::b});
  EXPECT_GT(target.received().back().at - typed, milliseconds(900)) << "nothing was held";
  // From then on no key is held.
  Keys expected{key::leftOption, key::a, key::leftOption, key::b};
  bool held = true;
  for (int attempt = 0; held && attempt < 10; ++attempt) {  // a busy machine may be late for other reasons
    const auto again = Clock::now();
    user.tap({key::d, key::leftOption, key::d});
    expected.insert(expected.end(), {key::d, key::leftOption, key::d});
    expectPressed(expected);
    held = target.received().back().at - again > milliseconds(900);
  }
  EXPECT_FALSE(held);
  kill(owner.pid(), SIGCONT);
  ASSERT_TRUE(awaitEnabled(2));
  expectKeysAreSwallowedFrom(expected);
}

TEST_F(TapProgramTest, AnOwnerThatNeverComesBackHoldsTheKeyboardForASecondAtMost) {
  start({"hang"});
  user.tap({key::leftOption, key::a, key::b, key::leftOption, key::d});
  expectPressed({key::leftOption, key::a, key::b, key::leftOption, key::d});
}

TEST_F(TapProgramTest, KillingAStoppedOwnerWhileAKeyIsHeldLosesNoKey) {
  start();
  kill(owner.pid(), SIGSTOP);
  user.tap({key::leftOption, key::a, key::b});
  user.sync();
  owner.kill();
  expectPressed({key::leftOption, key::a, key::b});
  EXPECT_TRUE(awaitTapPossible()) << "and a new start is not refused";
}

TEST_F(TapProgramTest, TheTapIsNotEndedOrStoppedByWhatATerminalOrASessionSends) {
  start();
  const auto program = childOf(owner.pid());
  ASSERT_GT(program, 0);
  EXPECT_NE(getpgid(program), getpgid(owner.pid())) << "Control-Z does not even reach it";
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) kill(program, signal);
  expectKeysAreSwallowedFrom({});
  EXPECT_EQ(childOf(owner.pid()), program);
}

TEST_F(TapProgramTest, ATapThatWasKilledIsReplacedAfterASecondAndTold) {
  std::vector<std::string> faults;
  keyboard.onFault([&](const std::string& sentence) { faults.push_back(sentence); });
  int disabled = 0;
  const auto started = Clock::now();
  tapWith([&](const platform::KeyEvent& event) {
    if (event.type != platform::event_type::tapDisabledByTimeout) return catcher(event);
    ++disabled;
    tap->enable();
    return platform::Verdict::pass;
  });
  // The display's programs are children too.
  const auto findTap = [] {
    std::ifstream children("/proc/self/task/" + std::to_string(getpid()) + "/children");
    for (pid_t child = 0; children >> child;) {
      if (std::filesystem::read_symlink("/proc/" + std::to_string(child) + "/exe").filename() ==
          "keyvora-tap")
        return child;
    }
    return -1;
  };
  Keys expected;
  for (int times = 1; times <= 2; ++times) {
    const auto program = findTap();
    ASSERT_GT(program, 0);
    kill(program, SIGKILL);
    ASSERT_TRUE(runUntil([&] { return disabled == times; }));
    EXPECT_EQ(faults.size(), std::size_t(times));
    EXPECT_EQ(faults.back(), "The keyboard's program was ended by signal 9; another one is started.");
    ASSERT_TRUE(runUntil([&] { return findTap() > 0; }));
    ASSERT_TRUE(awaitTap());
    EXPECT_GE(Clock::now() - started, milliseconds(1000) * times) << "at most one start a second";
    catcher = Catcher(applications);
    user.tap({key::leftOption, key::h, key::f, key::a});
    expected.insert(expected.end(), {key::leftOption, key::a});
    expectPressed(expected);  // a key held by a tap that is killed is lost
    EXPECT_EQ(catcher.caught, (Keys{key::h, key::f})) << times;
  }
}

TEST_F(TapProgramTest, AKeyMapThatChangesInBurstsWhileArmedLosesNoKey) {
  constexpr int rounds = 60;
  // A server that gets a new map while it holds a key back may repeat the key after its release.
  user.setRepetition(std::chrono::minutes(2), std::chrono::seconds(1));
  tapWith([&](const platform::KeyEvent& event) {
    if (event.type == platform::event_type::tapDisabledByTimeout) tap->enable();
    return catcher(event);
  });
  std::atomic<bool> ending = false;
  std::thread changing([&] {
    for (int i = 0; i < 12; ++i) display.setLayout(i % 2 == 0 ? "de" : "us");
    ending = true;
  });
  int typed = 0;
  const auto arrived = [&] { return target.pressed().size() + catcher.caught.size(); };
  for (; typed < rounds || !ending; ++typed) {
    user.tap({key::leftOption, key::h, key::f, key::a, key::b});
    const bool all = runUntil([&] { return std::cmp_equal(arrived(), 5 * (typed + 1)); });
    EXPECT_TRUE(all) << typed << ": " << arrived();
    if (!all) break;
  }
  changing.join();
  auto all = target.pressed();
  all.insert(all.end(), catcher.caught.begin(), catcher.caught.end());
  for (const auto code : {key::leftOption, key::h, key::f, key::a, key::b}) {
    EXPECT_EQ(std::ranges::count(all, code), typed) << code;
  }
  ASSERT_TRUE(awaitTap());
  catcher = Catcher(applications);
  user.tap({key::leftOption, key::h, key::f});
  EXPECT_TRUE(runUntil([&] { return catcher.caught == (Keys{key::h, key::f}); })) << "and it works as before";
}

}  // namespace
}  // namespace keyvora::x11
