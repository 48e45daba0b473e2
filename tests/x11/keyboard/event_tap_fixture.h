#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/keyboard.h"
#include "platform/key_code.h"
#include "platform/keyboard.h"
#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/keyboard/typist.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {

namespace key = platform::key_code;

inline constexpr std::uint64_t keyEvents = 0x1C00;

/// A handler like the core's: a lone Option tap in the target arms it, then it swallows `lettersWanted` key
/// presses (or Escape, which ends it), then it passes everything again.
class Catcher {
 public:
  explicit Catcher(Applications& applications, std::size_t lettersWanted = 2)
      : applications_(&applications), lettersWanted_(lettersWanted) {}

  platform::Verdict operator()(const platform::KeyEvent& event);

  bool armed = false;
  /// How many times it was armed.
  int armings = 0;
  /// All events it was called with.
  std::vector<platform::KeyEvent> shown;
  /// The keys that were swallowed.
  std::vector<std::uint16_t> caught;

 private:
  Applications* applications_;
  std::size_t lettersWanted_;
  std::size_t lettersCaught_ = 0;
  bool optionAlone_ = false;
};

/// A desktop with one active window of the target, a tap on it, and a user's keyboard.
class EventTapTest : public testing::Test {
 protected:
  EventTapTest();

  /// Creates a tap with this handler and enables it.
  void tapWith(platform::TapHandler handler);
  void tapWithCatcher() {
    tapWith([this](const platform::KeyEvent& event) { return catcher(event); });
  }

  /// Runs the main loop until the target received as many key presses as expected, and compares them.
  void expectPressed(const std::vector<std::uint16_t>& expected, const ClientWindow& window);
  void expectPressed(const std::vector<std::uint16_t>& expected) { expectPressed(expected, target); }

  /// Runs the main loop until nothing has arrived for a moment, so that unexpected events have had time to
  /// arrive.
  void settle();

  /// Waits until the tap made by `tapWith` has carried out its requests and read all events so far.
  bool awaitTap();

  /// Waits until a new tap can be created.
  bool awaitTapPossible();

  PrivateDisplay display;
  TargetWindow targetWindow;
  Applications applications{display.name(), targetWindow};
  CurrentTap currentTap;
  Keyboard keyboard{display.name(), KEYVORA_TAP_PROGRAM, currentTap, targetWindow};
  ClientWindow target{display.name(), {}};
  Typist user{display.name(), Typist::Device::hardware};
  Catcher catcher{applications};
  std::unique_ptr<platform::EventTap> tap;

 private:
  /// The user data of sentinel keys.
  static constexpr std::int64_t sentinelMark = 77;
  std::unique_ptr<platform::EventSource> sentinelSource = keyboard.createSource();
  int sentinelsSeen = 0;
};

}  // namespace keyvora::x11
