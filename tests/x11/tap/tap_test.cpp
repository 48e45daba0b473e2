#include <gtest/gtest.h>  // before Xlib, whose macros conflict with it

#include "hosts/x11/tap/tap.h"

#include <poll.h>
#include <sys/socket.h>

#include "platform/key_code.h"
#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/keyboard/typist.h"
#include "tests/x11/private_display.h"
#include "tests/x11/tap/relay.h"

/// The tap run step by step: the test decides what it does between two events.
namespace keyvora::x11 {
namespace {

namespace key = platform::key_code;
using platform::Verdict;
using Keys = std::vector<std::uint16_t>;
using Kind = TapRecord::Kind;

class TapTest : public testing::Test {
 protected:
  TapTest()
      : sockets(pair()), end(posix::FileDescriptor(sockets[0])), owner(posix::FileDescriptor(sockets[1])) {
    EXPECT_TRUE(target.awaitFocus());
  }

  static std::array<int, 2> pair() {
    std::array<int, 2> made{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, made.data()), 0);
    return made;
  }

  /// Opens and enables a tap on this display.
  void open(const std::string& displayName) {
    tap = Tap::open(displayName, end);
    ASSERT_NE(tap, nullptr);
    say({.kind = OwnerRecord::Kind::enable});
    ASSERT_EQ(heard().kind, Kind::enabled);
  }

  void say(const OwnerRecord& record) {
    ASSERT_TRUE(owner.send(record));
    tap->heedOwner();
  }

  /// The tap's next record.
  TapRecord heard() {
    std::optional<TapRecord> record;
    EXPECT_TRUE(runUntil([&] {
      tap->readEvents();
      record = owner.receive();
      return record.has_value();
    }));
    return record.value_or(TapRecord{});
  }

  /// The next event that it asks about, which must be of this key.
  TapRecord asked(std::uint16_t keyCode) {
    const auto record = heard();
    EXPECT_EQ(record.kind, Kind::asked);
    EXPECT_EQ(record.event.keyCode, keyCode);
    return record;
  }

  void pass(const TapRecord& record) {
    say({.kind = OwnerRecord::Kind::verdict, .number = record.number, .verdict = Verdict::pass});
  }

  /// The user taps Option, and the owner passes it: every key is grabbed. Does not wait for the release.
  void tapOption() {
    user.tap({key::leftOption});
    pass(asked(key::leftOption));
    const auto release = heard();
    EXPECT_EQ(release.kind, Kind::told);
    lastTold = release.number;
  }

  /// The owner exceeds its time.
  void giveUp() { tap->keepTime(Tap::Clock::now() + 2 * verdictLimit); }

  bool arrive(const Keys& keys) {
    return runUntil([&] { return target.pressed() == keys; });
  }

  PrivateDisplay display;
  ClientWindow target{display.name(), {}};
  Typist user{display.name(), Typist::Device::hardware};
  std::array<int, 2> sockets;
  TapEnd end;
  RecordSocket<TapRecord, OwnerRecord> owner;
  std::unique_ptr<Tap> tap;
  std::uint64_t lastTold = 0;
};

TEST_F(TapTest, AKeyThatWasCaughtJustBeforeTheTapWentOffIsSentOn) {
  open(display.name());
  tapOption();
  user.press(key::h);
  user.sync();  // the server holds the key; the tap has not read it
  giveUp();
  tap->readEvents();
  EXPECT_TRUE(arrive({key::leftOption, key::h}));
  user.release(key::h);
}

TEST_F(TapTest, AKeyThatWasCaughtJustBeforeTheTapEndsIsSentOn) {
  open(display.name());
  user.tap({key::leftOption, key::a});
  user.sync();  // the server holds the key; the tap has not read it
  tap.reset();
  EXPECT_TRUE(arrive({key::leftOption, key::a}));
}

TEST_F(TapTest, AKeyThatIsDownBeforeItsPressIsReadHasTheMeaningOfItsPress) {
  open(display.name());
  Child command({"setxkbmap", "-display", display.name(), "-option", "compose:ralt"}, {});
  ASSERT_EQ(command.wait(), 0);
  user.press(key::rightOption);
  user.sync();
  // The tap has read neither the change nor the press when it asks the server which keys are down.
  constexpr std::uint8_t someKey = 38;
  say({.kind = OwnerRecord::Kind::inject, .keycode = someKey, .down = true, .mark = {.userData = 1}});
  say({.kind = OwnerRecord::Kind::inject, .keycode = someKey, .down = false, .mark = {.userData = 1}});
  const auto compose = asked(key::none);
  EXPECT_EQ(compose.event.flags, 0u);
  pass(compose);
  user.release(key::rightOption);
}

TEST_F(TapTest, WhenTheOwnerHangsItUngrabsBeforeItLetsGo) {
  open(display.name());
  tapOption();
  user.tap({key::h, key::a, key::b});
  asked(key::h);
  giveUp();
  // With the grabs still active the next key would be caught, and wait for the tap to read it.
  EXPECT_TRUE(arrive({key::leftOption, key::h, key::a, key::b}));
}

TEST_F(TapTest, KeysArriveAsTheyWereTypedWhateverTheOwnerDoesAfterATimeOut) {
  open(display.name());
  tapOption();
  user.tap({key::h, key::a});
  const auto held = asked(key::h);
  giveUp();
  EXPECT_EQ(heard().kind, Kind::disabled);
  user.tap({key::b});
  user.sync();  // the server has it before the tap's grabs
  say({.kind = OwnerRecord::Kind::verdict, .number = held.number, .verdict = Verdict::swallow});
  say({.kind = OwnerRecord::Kind::enable});
  EXPECT_EQ(heard().kind, Kind::enabled);
  user.tap({key::d, key::f, key::h});
  // A second late verdict, while another key waits.
  const auto next = asked(key::d);
  say({.kind = OwnerRecord::Kind::verdict, .number = held.number, .verdict = Verdict::swallow});
  giveUp();
  say({.kind = OwnerRecord::Kind::enable});
  say({.kind = OwnerRecord::Kind::verdict, .number = next.number, .verdict = Verdict::swallow});
  user.tap({key::a});
  EXPECT_TRUE(runUntil([&] {
    tap->readEvents();
    while (const auto record = owner.receive()) {
      if (record->kind == Kind::asked) pass(*record);
    }
    return target.pressed().size() == 8;
  }));
  EXPECT_EQ(target.pressed(),
            (Keys{key::leftOption, key::h, key::a, key::b, key::d, key::f, key::h, key::a}));
}

TEST_F(TapTest, WhenItIsEnabledAgainItKnowsNothingOfThePressesBefore) {
  open(display.name());
  user.press(key::leftOption);
  pass(asked(key::leftOption));
  user.tap({key::h});
  asked(key::h);
  giveUp();
  EXPECT_TRUE(arrive({key::leftOption, key::h}));
  EXPECT_EQ(heard().kind, Kind::disabled);
  say({.kind = OwnerRecord::Kind::enable});
  EXPECT_EQ(heard().kind, Kind::enabled);
  user.release(key::leftOption);
  // The owner did not get the letter in between: with the key code, the release would make a lone tap of
  // Option.
  const auto released = heard();
  EXPECT_EQ(released.event.type, platform::event_type::flagsChanged);
  EXPECT_EQ(released.event.keyCode, key::none);
}

TEST_F(TapTest, WhileItIsOffItIsToldOfNoKey) {
  open(display.name());
  tapOption();
  giveUp();
  EXPECT_EQ(heard().kind, Kind::disabled);
  tap->readEvents();
  user.tap({key::a, key::leftOption, key::b});
  EXPECT_TRUE(arrive({key::leftOption, key::a, key::leftOption, key::b}));
  pollfd said{tap->fileDescriptor(), POLLIN, 0};
  EXPECT_EQ(poll(&said, 1, 100), 0);
}

TEST_F(TapTest, AModifierThatWentDownWhileItWasOffIsAFlag) {
  open(display.name());
  tapOption();
  giveUp();
  EXPECT_EQ(heard().kind, Kind::disabled);
  user.press(key::leftShift);
  EXPECT_TRUE(arrive({key::leftOption, key::leftShift}));
  tap->readEvents();
  say({.kind = OwnerRecord::Kind::enable});
  EXPECT_EQ(heard().kind, Kind::enabled);
  user.tap({key::h});
  EXPECT_EQ(asked(key::h).event.flags, platform::event_flag::shift);
  user.release(key::leftShift);
}

TEST_F(TapTest, ItAsksTheServerBeforeItDecidesThatNoGrabHoldsAPress) {
  Relay relay(display.name());
  open(relay.name());
  tapOption();
  relay.holdBackBehindNextPress();
  user.tap({key::h});
  // The report that a grab holds it comes late. If it were taken for a key of another window, its code
  // would be missing.
  asked(key::h);
  tap.reset();
}

TEST_F(TapTest, ItLetsGoOfAHeldKeyWhenItEnds) {
  open(display.name());
  user.tap({key::leftOption, key::a});
  asked(key::leftOption);
  tap.reset();
  EXPECT_TRUE(arrive({key::leftOption, key::a}));
}

}  // namespace
}  // namespace keyvora::x11
