#include "platform/x11/keyboard/own_events.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

constexpr OwnMark first{.userData = 1, .flags = 0};
constexpr OwnMark second{.userData = 2, .flags = 0x20000};
constexpr OwnMark foreign{};

TEST(OwnEvents, AnEventWithTheNumberOfTheRequestIsOwn) {
  OwnEvents events;
  events.expect(10, first);
  events.onDevice(10);
  EXPECT_EQ(events.onMaster(), first);
}

TEST(OwnEvents, OnlyTheFirstEventWithTheNumberIsOwn) {
  OwnEvents events;
  events.expect(10, first);
  events.onDevice(9);   // before the request
  events.onDevice(10);  // by it
  events.onDevice(10);  // after it, while no other request was made
  EXPECT_EQ(events.onMaster(), foreign);
  EXPECT_EQ(events.onMaster(), first);
  EXPECT_EQ(events.onMaster(), foreign);
}

TEST(OwnEvents, ARequestThatMadeNoEventIsForgotten) {
  OwnEvents events;
  events.expect(10, first);
  events.expect(11, second);
  events.onDevice(11);
  events.onDevice(12);
  EXPECT_EQ(events.onMaster(), second);
  EXPECT_EQ(events.onMaster(), foreign);
}

TEST(OwnEvents, MarksKeepTheirOrderHoweverLateTheMasterFollows) {
  OwnEvents events;
  events.expect(10, first);
  events.expect(12, second);
  events.onDevice(10);
  events.onDevice(11);
  events.onDevice(12);
  EXPECT_EQ(events.onMaster(), first);
  EXPECT_EQ(events.onMaster(), foreign);
  EXPECT_EQ(events.onMaster(), second);
  EXPECT_EQ(events.onMaster(), foreign);
}

}  // namespace
}  // namespace keyvora::x11
