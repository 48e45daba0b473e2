#include "hosts/x11/tap/own_events.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

constexpr OwnMark first{.userData = 1, .flags = 0};
constexpr OwnMark second{.userData = 2, .flags = 0x20000};
constexpr OwnMark foreign{};

/// A key, identified by its time.
constexpr RawKey at(unsigned long time) {
  return {.keycode = 38, .down = true, .time = time};
}

TEST(OwnEvents, AnEventWithTheNumberOfTheRequestIsOwn) {
  OwnEvents events;
  events.expect(10, first);
  events.onDevice(10, at(1));
  EXPECT_EQ(events.onMaster(at(1)), first);
}

TEST(OwnEvents, OnlyTheFirstEventWithTheNumberIsOwn) {
  OwnEvents events;
  events.expect(10, first);
  events.onDevice(9, at(1));   // before the request
  events.onDevice(10, at(2));  // made by the request
  events.onDevice(10, at(3));  // after it, before the next request
  EXPECT_EQ(events.onMaster(at(1)), foreign);
  EXPECT_EQ(events.onMaster(at(2)), first);
  EXPECT_EQ(events.onMaster(at(3)), foreign);
}

TEST(OwnEvents, ARequestThatMadeNoEventIsForgotten) {
  OwnEvents events;
  events.expect(10, first);
  events.expect(11, second);
  events.onDevice(11, at(1));
  events.onDevice(12, at(2));
  EXPECT_EQ(events.onMaster(at(1)), second);
  EXPECT_EQ(events.onMaster(at(2)), foreign);
}

TEST(OwnEvents, MarksKeepTheirOrderHoweverLateTheMasterFollows) {
  OwnEvents events;
  events.expect(10, first);
  events.expect(12, second);
  events.onDevice(10, at(1));
  events.onDevice(11, at(1));
  events.onDevice(12, at(1));
  EXPECT_EQ(events.onMaster(at(1)), first);
  EXPECT_EQ(events.onMaster(at(1)), foreign);
  EXPECT_EQ(events.onMaster(at(1)), second);
  EXPECT_EQ(events.onMaster(at(1)), foreign);
}

TEST(OwnEvents, KeysThatOthersMadeBeforeItListenedAreNotTakenForOwn) {
  const RawKey othersKey{.keycode = 39, .down = true, .time = 1};
  const RawKey othersRelease{.keycode = 38, .down = false, .time = 2};
  OwnEvents events;
  events.expect(10, first);
  events.onDevice(10, at(2));
  EXPECT_EQ(events.onMaster(othersKey), foreign);
  EXPECT_EQ(events.onMaster(othersRelease), foreign);
  EXPECT_EQ(events.onMaster(at(2)), first);
}

TEST(OwnEvents, AnEventIsOutstandingUntilTheMasterHasIt) {
  OwnEvents events;
  EXPECT_FALSE(events.areOutstanding());
  events.expect(10, first);
  EXPECT_TRUE(events.areOutstanding());
  events.onDevice(10, at(1));
  EXPECT_TRUE(events.areOutstanding());
  EXPECT_EQ(events.onMaster(at(1)), first);
  EXPECT_FALSE(events.areOutstanding());
}

TEST(OwnEvents, NothingIsOutstandingOnceTheServerIsPastARequestThatMadeNoEvent) {
  OwnEvents events;
  events.expect(10, first);
  events.reached(10);
  EXPECT_TRUE(events.areOutstanding());
  events.reached(11);
  EXPECT_FALSE(events.areOutstanding());
}

TEST(OwnEvents, WhatOthersMadeIsNotOutstanding) {
  OwnEvents events;
  events.onDevice(10, at(1));
  EXPECT_FALSE(events.areOutstanding());
}

}  // namespace
}  // namespace keyvora::x11
