// usage: stand-in-typist KEYCODE...
// Presses and releases keys at the hardware level, like a user: 58 is Option, 40 is K. There are 50 ms
// between two events. Exits with 77 if the system does not let this process post events.

#include <CoreGraphics/CoreGraphics.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr auto pause = std::chrono::milliseconds(50);
constexpr CGKeyCode leftOption = 58;
constexpr CGKeyCode rightOption = 61;

void post(CGKeyCode key, bool down) {
  CGEventRef event = CGEventCreateKeyboardEvent(nullptr, key, down);
  if (event == nullptr) return;
  if (key == leftOption || key == rightOption) {
    CGEventSetType(event, kCGEventFlagsChanged);
    CGEventSetFlags(event, down ? kCGEventFlagMaskAlternate : CGEventFlags{});
  }
  CGEventPost(kCGHIDEventTap, event);
  CFRelease(event);
  std::this_thread::sleep_for(pause);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int notPermitted = 77;
  if (argc < 2) {
    std::fputs("usage: stand-in-typist KEYCODE...\n", stderr);
    return 2;
  }
  if (!CGPreflightPostEventAccess()) {
    std::fputs("stand-in-typist: this process may not post events\n", stderr);
    return notPermitted;
  }
  for (int index = 1; index < argc; ++index) {
    char* end = nullptr;
    const long key = std::strtol(argv[index], &end, 10);
    if (*end != '\0' || end == argv[index] || key < 0 || key > 127) {
      std::fprintf(stderr, "stand-in-typist: %s is no key code\n", argv[index]);
      return 2;
    }
    post(static_cast<CGKeyCode>(key), true);
    post(static_cast<CGKeyCode>(key), false);
  }
  return 0;
}
