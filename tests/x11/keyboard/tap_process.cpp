// A program with a tap that swallows every key press it can, on the display that its argument names: for
// tests to kill, or to take the display from.

#include <cstdio>
#include <memory>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/keyboard.h"
#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/private_display.h"

int main(int argc, char** argv) {
  using namespace keyvora;
  if (argc != 2) return 2;
  x11::setDisplayLossHandler([] { std::fputs("records are safe\n", stderr); });
  x11::TargetWindow targetWindow;
  const x11::Applications applications(argv[1], targetWindow);  // notices the end of the display
  x11::CurrentTap currentTap;
  x11::Keyboard keyboard(argv[1], KEYVORA_TAP_PROGRAM, currentTap, targetWindow);
  std::unique_ptr<platform::EventTap> tap;
  const auto swallow = [](const platform::KeyEvent& event) {
    return event.type == platform::event_type::keyDown && event.userData == 0 ? platform::Verdict::swallow
                                                                              : platform::Verdict::pass;
  };
  if (!x11::runUntil([&] { return (tap = keyboard.createTap(0x1C00, swallow)) != nullptr; })) return 3;
  tap->enable();
  // Says to whoever listens that the tap is at work.
  for (const bool down : {true, false}) {
    if (const auto sentinel = keyboard.createEvent(nullptr, x11::sentinelKey, down))
      sentinel->postToHardware();
  }
  x11::runUntil([] { return false; }, std::chrono::minutes(2));
  return 4;
}
