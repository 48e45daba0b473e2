// usage: bench_bare
// Grabs every key and sends each one on at once: the lower bound for a program that gets keys before their
// windows do. Runs until a signal ends it.

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int masterKeyboard = 3;  // the "Virtual core keyboard" of every server

bool grabEveryKey(Display* display) {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  XISetMask(bits.data(), XI_KeyPress);
  XISetMask(bits.data(), XI_KeyRelease);
  XIEventMask mask{.deviceid = masterKeyboard, .mask_len = int(bits.size()), .mask = bits.data()};
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  return XIGrabKeycode(display, masterKeyboard, XIAnyKeycode, DefaultRootWindow(display), XIGrabModeSync,
                       XIGrabModeAsync, False, &mask, 1, &modifiers) == 0;
}

}  // namespace

int main() {
  Display* display = XOpenDisplay(nullptr);
  int major = 2;
  int minor = 2;
  if (display == nullptr || XIQueryVersion(display, &major, &minor) != Success || !grabEveryKey(display)) {
    std::fputs("bench_bare: no display, no XInput 2.2, or another program has the keys\n", stderr);
    return EXIT_FAILURE;
  }
  for (XEvent event;;) {
    XNextEvent(display, &event);
    if (event.type != GenericEvent || !XGetEventData(display, &event.xcookie)) continue;
    if (event.xcookie.evtype == XI_KeyPress) {
      const auto& press = *static_cast<const XIDeviceEvent*>(event.xcookie.data);
      XIAllowEvents(display, masterKeyboard, XIReplayDevice, press.time);
      XFlush(display);
    }
    XFreeEventData(display, &event.xcookie);
  }
}
