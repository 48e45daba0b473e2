#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <span>
#include <sstream>
#include <string>
#include <thread>

#include "hosts/x11/keyboard/owner_end.h"
#include "hosts/x11/tap/tap_end.h"
#include "platform/key_code.h"

/// Both ends of the socket pair between the tap and its owner.
namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr KeyEvent letter{.type = 10, .keyCode = 4};
constexpr KeyEvent other{.type = 10, .keyCode = 3};
constexpr KeyEvent release{.type = 11, .keyCode = 4};
constexpr KeyEvent disabled{.type = platform::event_type::tapDisabledByTimeout};

/// Any time will do: neither end reads a clock.
const Clock::time_point start{std::chrono::hours(1)};

class HandoverTest : public testing::Test {
 protected:
  HandoverTest()
      : sockets(pair()), tap(posix::FileDescriptor(sockets[0])), owner(posix::FileDescriptor(sockets[1])) {}

  static std::array<int, 2> pair() {
    std::array<int, 2> made{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, made.data()), 0);
    return made;
  }

  /// The tap's next action after the owner has answered.
  std::optional<Verdict> verdict() {
    EXPECT_EQ(tap.next(), std::nullopt);
    return tap.takeVerdict();
  }

  /// Whether the owner has handled everything it received.
  bool nothingIsOwed() {
    EXPECT_EQ(tap.next(), std::nullopt);
    return tap.deadline() == std::nullopt;
  }

  /// The next event at this time.
  std::optional<KeyEvent> next(Clock::time_point now = start) { return owner.next(now); }

  /// Answers as a tap does, until one verdict came.
  std::thread answering(Verdict& answer) {
    return std::thread([this, &answer] {
      for (;;) {
        tap.next();
        if (const auto given = tap.takeVerdict()) {
          answer = *given;
          tap.released();
          tap.next();  // `settle` may come after the verdict
          while (!told) tap.next();
          return;
        }
        std::this_thread::yield();
      }
    });
  }

  std::array<int, 2> sockets;
  TapEnd tap;
  OwnerEnd owner;
  /// The owner's call has returned.
  std::atomic<bool> told = false;
};

TEST_F(HandoverTest, EventsKeepTheirOrderAndVerdictsComeBack) {
  EXPECT_EQ(next(), std::nullopt);
  tap.tell(release, start);
  tap.ask(letter, start);
  EXPECT_EQ(next(), release);
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), std::nullopt) << "nobody asked about the first";
  EXPECT_EQ(next(), letter);
  EXPECT_EQ(verdict(), std::nullopt);
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), Verdict::swallow);
  tap.released();
  EXPECT_EQ(verdict(), std::nullopt);
  EXPECT_EQ(next(), std::nullopt);
  EXPECT_TRUE(nothingIsOwed());
}

TEST_F(HandoverTest, TheWindowIsThatOfTheEventShown) {
  tap.tell(release, start);
  tap.ask(letter, start, 17);
  EXPECT_EQ(owner.window(), 0U);
  EXPECT_EQ(next(), release);
  EXPECT_EQ(owner.window(), 0U) << "on its way already";
  owner.handled(Verdict::pass);
  EXPECT_EQ(next(), letter);
  EXPECT_EQ(owner.window(), 17U);
  owner.handled(Verdict::swallow);
  EXPECT_EQ(owner.window(), 0U);
}

TEST_F(HandoverTest, EventsThatNobodyAskedAboutAreAcknowledgedOnceAllWereShown) {
  tap.tell(release, start);
  tap.tell(letter, start);
  EXPECT_EQ(next(), release);
  owner.handled(Verdict::pass);
  EXPECT_EQ(next(), letter);
  owner.handled(Verdict::pass);
  EXPECT_FALSE(nothingIsOwed());
  EXPECT_EQ(next(), std::nullopt);
  EXPECT_TRUE(nothingIsOwed());
}

TEST_F(HandoverTest, AnEventIsOverdueAfterASecond) {
  EXPECT_EQ(tap.deadline(), std::nullopt);
  tap.tell(release, start);
  tap.ask(letter, start + milliseconds(10));
  EXPECT_EQ(tap.deadline(), start + milliseconds(1000));
  EXPECT_FALSE(tap.expire(start + milliseconds(999)));
  EXPECT_TRUE(tap.expire(start + milliseconds(1000)));
  EXPECT_EQ(tap.deadline(), std::nullopt);
  EXPECT_EQ(next(), disabled) << "and none of the events that were late";
  EXPECT_EQ(next(), std::nullopt);
}

TEST_F(HandoverTest, AHandlerThatTakesTooLongIsNotHeardAnyMore) {
  tap.ask(letter, start);
  EXPECT_EQ(next(), letter);
  EXPECT_EQ(tap.deadline(), start + milliseconds(1000));
  EXPECT_TRUE(tap.expire(start + milliseconds(1500)));
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), std::nullopt);
  EXPECT_EQ(next(), disabled);
}

TEST_F(HandoverTest, AVerdictOnAnEventThatWasGivenUpIsNotTakenForTheNext) {
  tap.ask(letter, start);
  EXPECT_EQ(next(), letter);
  tap.expire(start + milliseconds(1000));
  tap.enabled();
  tap.ask(other, start + milliseconds(1100));
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), std::nullopt);
}

TEST_F(HandoverTest, AfterGivingUpNothingIsSaidUntilTheTapIsEnabled) {
  tap.tell(release, start);
  EXPECT_TRUE(tap.expire(start + milliseconds(1000)));
  tap.tell(other, start + milliseconds(1100));
  EXPECT_EQ(tap.deadline(), std::nullopt);
  EXPECT_EQ(next(start + milliseconds(1100)), disabled);
  owner.handled(Verdict::pass);
  EXPECT_EQ(next(start + milliseconds(1100)), std::nullopt);
  tap.enabled();
  tap.tell(other, start + milliseconds(1200));
  EXPECT_EQ(next(start + milliseconds(1200)), other);
}

TEST_F(HandoverTest, WhatIsOlderThanASecondIsDropped) {
  tap.ask(letter, start);
  tap.tell(release, start + milliseconds(900));
  EXPECT_EQ(next(start + milliseconds(1001)), release) << "a tap that has not given up yet will";
  EXPECT_EQ(next(start + milliseconds(1901)), std::nullopt);
}

TEST_F(HandoverTest, MoreEventsThanAnOwnerMayOweAreATimeOut) {
  for (std::size_t i = 0; i < mostOwed; ++i) tap.tell(release, start);
  EXPECT_FALSE(tap.expire(start));
  tap.tell(release, start);
  EXPECT_TRUE(tap.expire(start));
  while (const auto event = next()) {
    if (*event == disabled) return;
    owner.handled(Verdict::pass);
    tap.next();  // sends records for which the socket had no room before
  }
  FAIL() << "the notice is the last word";
}

TEST_F(HandoverTest, AnOwnerThatDoesNotReadCostsTheTapNoTimeAndNoEvent) {
  // Depending on the kernel, a socket takes between a few and some hundred records.
  constexpr int events = 200;
  for (int i = 0; i < events; ++i) tap.tell(i % 2 == 0 ? letter : release, start);
  int shown = 0;
  while (shown < events) {
    const auto event = next();
    if (event) {
      EXPECT_EQ(*event, shown % 2 == 0 ? letter : release);
      owner.handled(Verdict::pass);
      ++shown;
    } else {
      ASSERT_NE(tap.awaited() & POLLOUT, 0) << shown;
      tap.next();
    }
  }
  EXPECT_EQ(next(), std::nullopt);
  EXPECT_EQ(tap.awaited() & POLLOUT, 0);
  EXPECT_TRUE(nothingIsOwed());
}

TEST_F(HandoverTest, SettlingInsideTheHandlerSwallows) {
  auto answer = Verdict::pass;
  tap.ask(letter, start);
  ASSERT_EQ(next(), letter);
  auto answers = answering(answer);
  owner.settle();
  told = true;
  answers.join();
  EXPECT_EQ(answer, Verdict::swallow);
  EXPECT_EQ(tap.deadline(), std::nullopt) << "the handler may now take its time";
  owner.handled(Verdict::pass);
  EXPECT_EQ(verdict(), std::nullopt) << "and what it returns is too late";
}

TEST_F(HandoverTest, SettlingOutsideTheHandlerPassesTheKeyAndTellsOfItWithoutItsCode) {
  auto answer = Verdict::swallow;
  tap.ask(letter, start);
  auto answers = answering(answer);
  owner.settle();
  told = true;
  answers.join();
  EXPECT_EQ(answer, Verdict::pass);
  auto unknown = letter;
  unknown.keyCode = platform::key_code::none;
  EXPECT_EQ(next(), unknown);
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), std::nullopt);
}

TEST_F(HandoverTest, AKeyTypedWhileTheHandlerActsWaitsForItsTurn) {
  auto answer = Verdict::pass;
  tap.ask(letter, start);
  ASSERT_EQ(next(), letter);
  auto answers = answering(answer);
  owner.settle();
  told = true;
  answers.join();
  tap.ask(other, start);
  owner.settle();
  EXPECT_EQ(verdict(), std::nullopt) << "it is neither passed nor swallowed with the one acted on";
  owner.handled(Verdict::swallow);
  EXPECT_EQ(verdict(), std::nullopt);
  EXPECT_EQ(next(), other) << "with its own code: it may begin the next sequence";
  owner.handled(Verdict::pass);
  EXPECT_EQ(verdict(), Verdict::pass);
}

TEST_F(HandoverTest, SettlingOnAnotherThreadLeavesTheVerdictToTheMainThread) {
  auto answer = Verdict::swallow;
  tap.ask(letter, start);
  ASSERT_EQ(next(), letter);
  std::thread poster([&] {
    owner.settle();
    told = true;
  });
  auto answers = answering(answer);
  owner.handled(Verdict::pass);
  answers.join();
  poster.join();
  EXPECT_EQ(answer, Verdict::pass);
}

TEST_F(HandoverTest, AnEventThatAnotherThreadReceivedIsAnnouncedAtOnce) {
  tap.ask(letter, start);
  std::thread poster([&] { owner.settle(); });
  // The event was received and its verdict is awaited, so the socket has nothing to read.
  pollfd announced{owner.toMain().fileDescriptor(), POLLIN, 0};
  EXPECT_EQ(poll(&announced, 1, 60'000), 1);
  EXPECT_EQ(next(), letter);
  auto answer = Verdict::swallow;
  auto answers = answering(answer);
  owner.handled(Verdict::pass);
  poster.join();
  told = true;
  answers.join();
}

TEST_F(HandoverTest, SettlingAfterAVerdictWaitsUntilTheTapHasLetGo) {
  tap.ask(letter, start);
  ASSERT_EQ(next(), letter);
  owner.handled(Verdict::pass);
  ASSERT_EQ(verdict(), Verdict::pass);
  std::atomic<bool> settled = false;
  std::thread answers([&] {
    // `settle` arrives while the keyboard is still frozen.
    for (int i = 0; i < 1000; ++i) tap.next();
    EXPECT_FALSE(settled);
    tap.released();
    while (!settled) tap.next();
  });
  owner.settle();
  settled = true;
  answers.join();
}

TEST_F(HandoverTest, SettlingNothingReturnsAtOnce) {
  owner.settle();
  tap.tell(release, start);
  owner.settle();
  EXPECT_EQ(next(), release);
}

TEST_F(HandoverTest, WhatWasReceivedWhileWaitingIsAnnouncedToTheMainThread) {
  tap.tell(release, start);
  std::thread answers([&] {
    while (!tap.next()) std::this_thread::yield();
    tap.enabled();
  });
  owner.enable();
  answers.join();
  pollfd announced{owner.toMain().fileDescriptor(), POLLIN, 0};
  EXPECT_EQ(poll(&announced, 1, 0), 1);
  EXPECT_EQ(next(), release);
}

TEST_F(HandoverTest, TheEndOfEitherEndIsNoticedByTheOther) {
  EXPECT_FALSE(owner.ended());
  EXPECT_FALSE(owner.finish(Clock::now())) << "the tap has not ended yet";
  tap.next();
  EXPECT_TRUE(tap.ended());
  tap = TapEnd(posix::FileDescriptor());
  EXPECT_EQ(next(), std::nullopt);
  EXPECT_TRUE(owner.ended());
}

TEST_F(HandoverTest, ATapOfAnotherBuildIsRefused) {
  const TapRecord introduction{.kind = TapRecord::Kind::ready, .number = recordsVersion + 1};
  ASSERT_EQ(send(sockets[0], &introduction, sizeof introduction, 0), ssize_t(sizeof introduction));
  EXPECT_FALSE(owner.awaitReady(Clock::now() + std::chrono::seconds(10)));
}

TEST_F(HandoverTest, SomethingThatIsNoRecordEndsIt) {
  ASSERT_EQ(send(sockets[0], "hello", 5, 0), 5);
  EXPECT_FALSE(owner.awaitReady(Clock::now() + std::chrono::seconds(10)));
  EXPECT_TRUE(owner.ended());
}

/// The kernel's flags for the memory that contains this address.
std::string memoryFlags(const void* address) {
  std::ifstream maps("/proc/self/smaps");
  bool here = false;
  for (std::string line; std::getline(maps, line);) {
    std::istringstream words(line);
    std::uintptr_t from = 0;
    std::uintptr_t to = 0;
    char dash = 0;
    if (words >> std::hex >> from >> dash >> to && dash == '-') {
      here = from <= std::uintptr_t(address) && std::uintptr_t(address) < to;
    } else if (here && line.starts_with("VmFlags:")) {
      return line + " ";
    }
  }
  return "";
}

TEST(KeyQueue, HoldsNoKeyThatWasTakenAndIsInNoCoreDump) {
  KeyQueue queue;
  for (int i = 0; i < 3; ++i) queue.push({.number = 7, .event = letter});
  ASSERT_TRUE(queue.take());
  ASSERT_TRUE(queue.take());
  const auto holds = [](const TapRecord& record) { return record.event == letter; };
  EXPECT_EQ(std::ranges::count_if(queue.memory(), holds), 1);
  queue.clear();
  const auto bytes = std::as_bytes(std::span(queue.memory()));
  EXPECT_TRUE(std::ranges::all_of(bytes.first(3 * sizeof(TapRecord)),
                                  [](std::byte each) { return each == std::byte{0}; }));
  EXPECT_NE(memoryFlags(&queue.memory()).find(" dd "), std::string::npos) << memoryFlags(&queue.memory());
}

}  // namespace
}  // namespace keyvora::x11
