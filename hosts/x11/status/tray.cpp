#include "hosts/x11/status/tray.h"

#include <X11/Xatom.h>

#include <string>
#include <utility>

namespace keyvora::x11 {
namespace {

/// SYSTEM_TRAY_REQUEST_DOCK, from the System Tray Protocol.
constexpr long requestDock = 0;

constexpr int ordinaryPriority = 0;

}  // namespace

Tray::Tray(MainLoop& loop, std::function<void()> onChange)
    : loop_(loop), onChange_(std::move(onChange)), connection_(Connection::open("")) {
  if (!connection_) return;
  auto* display = connection_->get();
  selection_ = connection_->atom(("_NET_SYSTEM_TRAY_S" + std::to_string(DefaultScreen(display))).c_str());
  XSelectInput(display, connection_->root(), StructureNotifyMask);  // a new tray announces itself there
  findOwner();
  events_.emplace(connection_->fileDescriptor(), ordinaryPriority, [this] { readEvents(); });
  readSoon();
}

void Tray::readEvents() {
  auto* display = connection_->get();
  bool changed = false;
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    changed = concerns(event) || changed;
  }
  if (!changed) return;
  findOwner();
  readSoon();
  onChange_();
}

/// An event read together with the answer to a request does not make the connection readable again.
void Tray::readSoon() {
  reading_ = loop_.schedule({}, false, platform::TimerMode::commonModes, [this] { readEvents(); });
}

bool Tray::concerns(const XEvent& event) const {
  const bool appeared = event.type == ClientMessage &&
                        event.xclient.message_type == connection_->atom("MANAGER") &&
                        static_cast<Atom>(event.xclient.data.l[1]) == selection_;
  const bool gone = event.type == DestroyNotify && owner_ != None && event.xdestroywindow.window == owner_;
  return appeared || gone;
}

/// Finds the owner and selects its destruction, with the server grabbed so that it cannot end in between.
void Tray::findOwner() {
  auto* display = connection_->get();
  XGrabServer(display);
  owner_ = XGetSelectionOwner(display, selection_);
  if (owner_ != None) XSelectInput(display, owner_, StructureNotifyMask);
  XUngrabServer(display);
  XFlush(display);
}

std::optional<VisualID> Tray::visual() {
  auto* display = connection_->get();
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  const ErrorTrap trap(display);
  readSoon();
  if (XGetWindowProperty(display, owner_, connection_->atom("_NET_SYSTEM_TRAY_VISUAL"), 0, 1, False,
                         XA_VISUALID, &type, &format, &count, &rest, &data) != Success) {
    return std::nullopt;
  }
  std::optional<VisualID> visual;
  if (type == XA_VISUALID && format == 32 && count == 1) visual = *reinterpret_cast<const VisualID*>(data);
  if (data != nullptr) XFree(data);
  return visual;
}

void Tray::dock(Window window) {
  auto* display = connection_->get();
  XClientMessageEvent message{};
  message.type = ClientMessage;
  message.window = owner_;
  message.message_type = connection_->atom("_NET_SYSTEM_TRAY_OPCODE");
  message.format = 32;
  message.data.l[0] = CurrentTime;
  message.data.l[1] = requestDock;
  message.data.l[2] = static_cast<long>(window);
  const ErrorTrap trap(display);
  XSendEvent(display, owner_, False, NoEventMask, reinterpret_cast<XEvent*>(&message));
  readSoon();
}

}  // namespace keyvora::x11
