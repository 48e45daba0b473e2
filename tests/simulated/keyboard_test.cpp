#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using testing::ElementsAre;
using testing::IsEmpty;
namespace type = platform::event_type;
namespace flag = platform::event_flag;

struct SimulatedKeyboardTest : testing::Test {
  Host host;
  std::vector<KeyEvent> seen;
  std::vector<std::string> order;

  /// A tap on key events that records them under its name.
  std::unique_ptr<platform::EventTap> tap(std::string name, Verdict verdict = Verdict::pass,
                                          std::uint64_t mask = 0x1C00) {
    return host.keyboard.createTap(mask, [this, name = std::move(name), verdict](const KeyEvent& event) {
      seen.push_back(event);
      order.push_back(name);
      return verdict;
    });
  }

  void postToHardware(std::uint16_t keyCode) {
    host.keyboard.createEvent(nullptr, keyCode, true)->postToHardware();
  }
};

TEST_F(SimulatedKeyboardTest, WithoutATapEveryEventPasses) {
  EXPECT_EQ(host.keyboard.type(4), Verdict::pass);
}

TEST_F(SimulatedKeyboardTest, ATapSeesNothingUntilItIsEnabled) {
  const auto made = tap("tap", Verdict::swallow);
  EXPECT_EQ(host.keyboard.type(4), Verdict::pass);
  EXPECT_THAT(seen, IsEmpty());
  EXPECT_FALSE(host.keyboard.tapsEnabled());
  made->enable();
  EXPECT_TRUE(host.keyboard.tapsEnabled());
  EXPECT_EQ(host.keyboard.type(4, flag::shift), Verdict::swallow);
  EXPECT_THAT(seen, ElementsAre(KeyEvent{type::keyDown, 4, flag::shift, 0},
                                KeyEvent{type::keyUp, 4, flag::shift, 0}));
}

TEST_F(SimulatedKeyboardTest, AnOptionTapIsTwoChangesOfTheFlags) {
  const auto made = tap("tap");
  made->enable();
  host.keyboard.tapOption();
  host.keyboard.tapOption(61);
  EXPECT_THAT(
      seen,
      ElementsAre(KeyEvent{type::flagsChanged, 58, flag::option, 0}, KeyEvent{type::flagsChanged, 58, 0, 0},
                  KeyEvent{type::flagsChanged, 61, flag::option, 0}, KeyEvent{type::flagsChanged, 61, 0, 0}));
}

TEST_F(SimulatedKeyboardTest, TheMaskChoosesWhatATapSees) {
  const auto made = tap("tap", Verdict::pass, 1ull << type::keyUp);
  made->enable();
  host.keyboard.type(4);
  host.keyboard.send({1'000'000, 4, 0, 0});
  EXPECT_THAT(seen, ElementsAre(KeyEvent{type::keyUp, 4, 0, 0}));
}

TEST_F(SimulatedKeyboardTest, TheNewestTapIsAskedFirstAndASwallowedEventGoesNoFurther) {
  const auto first = tap("first");
  const auto second = tap("second");
  first->enable();
  second->enable();
  host.keyboard.send({type::keyDown, 4, 0, 0});
  EXPECT_THAT(order, ElementsAre("second", "first"));
  const auto third = tap("third", Verdict::swallow);
  third->enable();
  order.clear();
  EXPECT_EQ(host.keyboard.send({type::keyDown, 4, 0, 0}), Verdict::swallow);
  EXPECT_THAT(order, ElementsAre("third"));
}

TEST_F(SimulatedKeyboardTest, BothWaysOfDisablingSwitchTheTapOffAndTellIt) {
  for (const auto disabled : {type::tapDisabledByTimeout, type::tapDisabledByUserInput}) {
    seen.clear();
    const auto made = tap("tap", Verdict::pass, 0);
    made->enable();
    host.keyboard.send({disabled, 0, 0, 0});
    EXPECT_THAT(seen, ElementsAre(KeyEvent{disabled, 0, 0, 0}));
    EXPECT_FALSE(host.keyboard.tapsEnabled());
  }
}

TEST_F(SimulatedKeyboardTest, ADestroyedTapIsGone) {
  auto made = tap("tap", Verdict::swallow);
  made->enable();
  made.reset();
  EXPECT_EQ(host.keyboard.tapCount(), 0u);
  EXPECT_EQ(host.keyboard.type(4), Verdict::pass);
}

TEST_F(SimulatedKeyboardTest, EventsCarryTheUserDataOfTheirSource) {
  const auto source = host.keyboard.createSource();
  source->setUserData(0x5E7A91C3);
  const auto event = host.keyboard.createEvent(source.get(), 58, true);
  event->setType(type::flagsChanged);
  event->setFlags(flag::option);
  event->postTo(77);
  host.keyboard.createEvent(nullptr, 4, false)->postTo(77);
  EXPECT_THAT(host.trace.of<trace::Posted>(),
              ElementsAre(trace::Posted{77, {type::flagsChanged, 58, flag::option, 0x5E7A91C3}},
                          trace::Posted{77, {type::keyUp, 4, 0, 0}}));
}

TEST_F(SimulatedKeyboardTest, WhatIsPostedToAProcessComesByNoTap) {
  const auto made = tap("tap");
  made->enable();
  host.keyboard.createEvent(nullptr, 4, true)->postTo(77);
  host.advance(1);
  EXPECT_THAT(seen, IsEmpty());
}

TEST_F(SimulatedKeyboardTest, WhatIsPostedAtTheHardwareLevelComesByOurTapOnTheMainLoop) {
  const auto made = tap("tap", Verdict::swallow);
  made->enable();
  host.trace.clear();
  postToHardware(4);
  EXPECT_THAT(seen, IsEmpty()) << "not inside the call";
  host.advance(0);
  const KeyEvent event{type::keyDown, 4, 0, 0};
  EXPECT_THAT(seen, ElementsAre(event));
  EXPECT_THAT(host.trace.entries(), ElementsAre(TraceEntry(trace::Posted{std::nullopt, event}),
                                                TraceEntry(trace::Tapped{event, Verdict::swallow})));
}

TEST_F(SimulatedKeyboardTest, AnEventOfOneKeyAndDirectionCanBeMadeToFail) {
  host.failures.event(4, true);
  EXPECT_EQ(host.keyboard.createEvent(nullptr, 4, true), nullptr);
  EXPECT_NE(host.keyboard.createEvent(nullptr, 4, false), nullptr);
  EXPECT_NE(host.keyboard.createEvent(nullptr, 5, true), nullptr);
  host.failures.clear();
  EXPECT_NE(host.keyboard.createEvent(nullptr, 4, true), nullptr);
}

}  // namespace
}  // namespace keyvora::simulated
