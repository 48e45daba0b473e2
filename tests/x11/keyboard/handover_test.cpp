#include "hosts/x11/keyboard/handover.h"

#include <gtest/gtest.h>

#include <thread>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using std::chrono::milliseconds;

constexpr KeyEvent letter{.type = 10, .keyCode = key_code::h};
constexpr KeyEvent other{.type = 10, .keyCode = key_code::f};
constexpr KeyEvent release{.type = 11, .keyCode = key_code::h};
constexpr KeyEvent disabled{.type = platform::event_type::tapDisabledByTimeout};

/// Any moment will do: the handover has no clock of its own.
const Handover::Clock::time_point start{std::chrono::hours(1)};

TEST(Handover, EventsKeepTheirOrderAndVerdictsComeBack) {
  Handover handover;
  EXPECT_EQ(handover.next(), std::nullopt);
  handover.tell(release, start);
  handover.ask(letter, start);
  EXPECT_EQ(handover.next(), release);
  handover.handled(Verdict::swallow);
  EXPECT_EQ(handover.verdict(), std::nullopt) << "nobody asked about the first";
  EXPECT_EQ(handover.next(), letter);
  EXPECT_EQ(handover.verdict(), std::nullopt);
  handover.handled(Verdict::swallow);
  EXPECT_EQ(handover.verdict(), Verdict::swallow);
  handover.released();
  EXPECT_EQ(handover.verdict(), std::nullopt);
  EXPECT_EQ(handover.next(), std::nullopt);
}

TEST(Handover, AnEventIsOverdueAfterASecondInTheQueue) {
  Handover handover;
  EXPECT_EQ(handover.deadline(), std::nullopt);
  handover.tell(release, start);
  handover.ask(letter, start + milliseconds(10));
  EXPECT_EQ(handover.deadline(), start + milliseconds(1000));
  EXPECT_FALSE(handover.expire(start + milliseconds(999)));
  EXPECT_TRUE(handover.expire(start + milliseconds(1000)));
  EXPECT_EQ(handover.deadline(), std::nullopt);
  EXPECT_EQ(handover.next(), disabled) << "and none of the events that were late";
  EXPECT_EQ(handover.next(), std::nullopt);
}

TEST(Handover, AHandlerThatTakesTooLongIsNotHeardAnyMore) {
  Handover handover;
  handover.ask(letter, start);
  EXPECT_EQ(handover.next(), letter);
  EXPECT_EQ(handover.deadline(), start + milliseconds(1000));
  EXPECT_TRUE(handover.expire(start + milliseconds(1500)));
  handover.handled(Verdict::swallow);
  EXPECT_EQ(handover.verdict(), std::nullopt);
  EXPECT_EQ(handover.next(), disabled);
}

TEST(Handover, WhatComesAfterATimeOutIsShownAgain) {
  Handover handover;
  handover.tell(release, start);
  EXPECT_TRUE(handover.expire(start + milliseconds(1000)));
  handover.tell(other, start + milliseconds(1100));
  EXPECT_EQ(handover.next(), disabled);
  handover.handled(Verdict::pass);
  EXPECT_EQ(handover.next(), other);
}

TEST(Handover, MoreEventsThanItHoldsAreATimeOut) {
  Handover handover;
  for (int i = 0; i < 256; ++i) handover.tell(release, start);
  EXPECT_FALSE(handover.expire(start));
  handover.tell(release, start);
  EXPECT_TRUE(handover.expire(start));
  EXPECT_EQ(handover.next(), disabled);
  EXPECT_EQ(handover.next(), std::nullopt);
}

/// Answers as the tap's thread does until one verdict was there.
std::thread answering(Handover& handover, Verdict& answer) {
  return std::thread([&] {
    for (;;) {
      if (const auto verdict = handover.verdict()) {
        answer = *verdict;
        handover.released();
        return;
      }
      std::this_thread::yield();
    }
  });
}

TEST(Handover, SettlingInsideTheHandlerSwallows) {
  Handover handover;
  auto answer = Verdict::pass;
  handover.ask(letter, start);
  ASSERT_EQ(handover.next(), letter);
  auto tap = answering(handover, answer);
  handover.settle();
  tap.join();
  EXPECT_EQ(answer, Verdict::swallow);
  EXPECT_EQ(handover.deadline(), std::nullopt) << "the handler may now take its time";
  handover.handled(Verdict::pass);
  EXPECT_EQ(handover.verdict(), std::nullopt) << "and what it returns is too late";
}

TEST(Handover, SettlingOutsideTheHandlerPassesTheKeyAndTellsOfItWithoutItsCode) {
  Handover handover;
  auto answer = Verdict::swallow;
  handover.ask(letter, start);
  auto tap = answering(handover, answer);
  handover.settle();
  tap.join();
  EXPECT_EQ(answer, Verdict::pass);
  auto told = letter;
  told.keyCode = key_code::none;
  EXPECT_EQ(handover.next(), told);
  handover.handled(Verdict::swallow);
  EXPECT_EQ(handover.verdict(), std::nullopt);
}

TEST(Handover, AKeyTypedWhileTheHandlerActsWaitsForItsTurn) {
  Handover handover;
  auto answer = Verdict::pass;
  handover.ask(letter, start);
  ASSERT_EQ(handover.next(), letter);
  auto tap = answering(handover, answer);
  handover.settle();
  tap.join();
  handover.ask(other, start);
  handover.settle();
  EXPECT_EQ(handover.verdict(), std::nullopt) << "it is neither passed nor swallowed with the one acted on";
  handover.handled(Verdict::swallow);
  EXPECT_EQ(handover.verdict(), std::nullopt);
  EXPECT_EQ(handover.next(), other) << "with its own code: it may begin the next sequence";
  handover.handled(Verdict::pass);
  EXPECT_EQ(handover.verdict(), Verdict::pass);
}

TEST(Handover, SettlingOnAnotherThreadLeavesTheVerdictToTheMainThread) {
  Handover handover;
  auto answer = Verdict::swallow;
  handover.ask(letter, start);
  ASSERT_EQ(handover.next(), letter);
  std::thread poster([&] { handover.settle(); });
  auto tap = answering(handover, answer);
  handover.handled(Verdict::pass);
  tap.join();
  poster.join();
  EXPECT_EQ(answer, Verdict::pass);
}

TEST(Handover, SettlingNothingReturnsAtOnce) {
  Handover handover;
  handover.settle();
  handover.tell(release, start);
  handover.settle();
  EXPECT_EQ(handover.next(), release);
}

}  // namespace
}  // namespace keyvora::x11
