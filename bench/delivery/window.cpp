#include "bench/delivery/window.h"

#include <X11/Xutil.h>
#include <poll.h>

#include <algorithm>
#include <stdexcept>

namespace keyvora::bench {

TargetWindow::TargetWindow(Display* display)
    : display_(display),
      window_(XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 400, 300, 0, 0, 0)) {
  char name[] = "gnumeric";
  XClassHint hint{name, name};
  XSetClassHint(display_, window_, &hint);
  XStoreName(display_, window_, "delivery");
  XSelectInput(display_, window_, KeyPressMask | FocusChangeMask | StructureNotifyMask);
  XMapRaised(display_, window_);
  XFlush(display_);
  const auto limit = Clock::now() + std::chrono::seconds(10);
  for (XEvent event; next(event, limit);) {
    if (event.type == FocusIn) return;
  }
  throw std::runtime_error("the window did not get the keyboard");
}

TargetWindow::~TargetWindow() {
  XDestroyWindow(display_, window_);
  XFlush(display_);
}

std::optional<TargetWindow::Clock::time_point> TargetWindow::waitFor(KeyCode key,
                                                                     std::chrono::milliseconds limit) {
  const auto until = Clock::now() + limit;
  for (XEvent event; next(event, until);) {
    if (event.type == KeyPress && event.xkey.keycode == key) return Clock::now();
  }
  return std::nullopt;
}

bool TargetWindow::next(XEvent& event, Clock::time_point until) {
  while (XPending(display_) == 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
    if (left <= 0) return false;
    pollfd descriptor{ConnectionNumber(display_), POLLIN, 0};
    ::poll(&descriptor, 1, static_cast<int>(left));
  }
  XNextEvent(display_, &event);
  return true;
}

}  // namespace keyvora::bench
