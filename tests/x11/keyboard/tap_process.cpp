// A program with a tap that swallows every key press it can, on the display named by its argument. Tests
// kill it, stop it, or end its display. With "hang" as a second argument its handler never returns from the
// first press.

#include <unistd.h>

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
  namespace event_type = platform::event_type;
  if (argc < 2) return 2;
  const bool hangs = argc > 2;
  x11::setDisplayLossHandler([] { std::fputs("records are safe\n", stderr); });
  x11::TargetWindow targetWindow;
  const x11::Applications applications(argv[1], targetWindow);  // notices the loss of the display
  x11::CurrentTap currentTap;
  x11::Keyboard keyboard(argv[1], KEYVORA_TAP_PROGRAM, currentTap, targetWindow);
  keyboard.onFault([](const std::string& sentence) { std::fprintf(stderr, "%s\n", sentence.c_str()); });
  std::unique_ptr<platform::EventTap> tap;
  // Reports each enabling of the tap on standard output.
  const auto enable = [&] {
    tap->enable();
    for (const bool down : {true, false}) {
      if (const auto sentinel = keyboard.createEvent(nullptr, x11::sentinelKey, down))
        sentinel->postToHardware();
    }
  };
  const auto swallow = [&](const platform::KeyEvent& event) {
    if (event.type == event_type::tapDisabledByTimeout) enable();
    if (event.type != event_type::keyDown || event.userData != 0) return platform::Verdict::pass;
    while (hangs) pause();
    return platform::Verdict::swallow;
  };
  if (!x11::runUntil([&] { return (tap = keyboard.createTap(0x1C00, swallow)) != nullptr; })) return 3;
  enable();
  x11::runUntil([] { return false; }, std::chrono::minutes(2));
  return 4;
}
