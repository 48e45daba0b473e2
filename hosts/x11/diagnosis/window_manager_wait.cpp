#include "hosts/x11/diagnosis/window_manager_wait.h"

#include <utility>

#include "hosts/x11/diagnosis/window_manager.h"

namespace keyvora::x11 {
namespace {

/// Takes all events that have come out of Xlib's queue; whether there were any. Afterwards a new one makes
/// the connection readable.
bool drain(Display* display) {
  bool any = false;
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    any = true;
  }
  return any;
}

}  // namespace

std::unique_ptr<WindowManagerWait> WindowManagerWait::start(const std::string& displayName,
                                                            platform::MainLoop& loop, platform::Seconds limit,
                                                            std::function<void()> over) {
  auto connection = Connection::open(displayName);
  if (!connection) return nullptr;
  Display* display = connection->get();
  XSelectInput(display, connection->root(), PropertyChangeMask);
  // Events may arrive with the answers to the questions: then it asks again.
  do {
    if (tellsFrontWindow(display)) return nullptr;
  } while (drain(display));
  return std::unique_ptr<WindowManagerWait>(
      new WindowManagerWait(std::move(connection), loop, limit, std::move(over)));
}

WindowManagerWait::WindowManagerWait(std::unique_ptr<Connection> connection, platform::MainLoop& loop,
                                     platform::Seconds limit, std::function<void()> over)
    : connection_(std::move(connection)),
      over_(std::move(over)),
      source_(connection_->fileDescriptor(), G_PRIORITY_DEFAULT, [this] { look(); }),
      timer_(loop.schedule(limit, false, platform::TimerMode::commonModes, [this] { finish(); })) {}

void WindowManagerWait::look() {
  Display* display = connection_->get();
  while (drain(display)) {
    if (tellsFrontWindow(display)) return finish();
  }
}

/// The last thing that is done with this: `over` may destroy it.
void WindowManagerWait::finish() {
  const auto over = std::move(over_);
  over();
}

}  // namespace keyvora::x11
