#include "hosts/x11/instance.h"

#include <poll.h>

#include <algorithm>

namespace keyvora::x11 {
namespace {

using Clock = std::chrono::steady_clock;

Atom selection(Connection& connection) {
  return connection.atom("_KEYVORA_INSTANCE");
}

/// None when this connection owns the selection now; else its owner.
Window takeOrFindOwner(Connection& connection) {
  Display* display = connection.get();
  const Atom ours = selection(connection);
  // So that two processes that start at once do not both find it free.
  XGrabServer(display);
  const Window owner = XGetSelectionOwner(display, ours);
  if (owner == None) {
    const Window window = XCreateWindow(display, connection.root(), -1, -1, 1, 1, 0, CopyFromParent,
                                        InputOnly, CopyFromParent, 0, nullptr);
    XSetSelectionOwner(display, ours, window, CurrentTime);
  } else {
    XSelectInput(display, owner, StructureNotifyMask);
  }
  XUngrabServer(display);
  XSync(display, False);
  return owner;
}

/// Waits until this window is destroyed, but no longer than until `end`.
bool awaitEnd(Connection& connection, Window window, Clock::time_point end) {
  Display* display = connection.get();
  for (;;) {
    while (XPending(display) > 0) {
      XEvent event;
      XNextEvent(display, &event);
      if (event.type == DestroyNotify && event.xdestroywindow.window == window) return true;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return false;
    pollfd source{connection.fileDescriptor(), POLLIN, 0};
    poll(&source, 1, int(left.count()));
  }
}

}  // namespace

std::unique_ptr<Instance> Instance::claim(const std::string& displayName,
                                          std::chrono::milliseconds patience) {
  auto connection = Connection::open(displayName);
  if (!connection) return nullptr;
  const auto end = Clock::now() + patience;
  for (;;) {
    const Window owner = takeOrFindOwner(*connection);
    if (owner == None) return std::unique_ptr<Instance>(new Instance(std::move(connection)));
    if (!awaitEnd(*connection, owner, end)) return nullptr;
  }
}

bool Instance::isClaimed(Connection& connection) {
  return XGetSelectionOwner(connection.get(), selection(connection)) != None;
}

}  // namespace keyvora::x11
