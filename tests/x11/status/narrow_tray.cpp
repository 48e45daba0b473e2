#include "tests/x11/status/narrow_tray.h"

#include <X11/Xutil.h>

namespace keyvora::x11 {

NarrowTray::NarrowTray(int width, int height, Sizes sizes)
    : connection_(Connection::open("")), slot_{300, 200, width, height}, sizes_(sizes) {
  auto* display = connection_->get();
  XSetWindowAttributes attributes{};
  attributes.override_redirect = True;
  attributes.background_pixel = WhitePixel(display, DefaultScreen(display));
  window_ = XCreateWindow(display, connection_->root(), slot_.x, slot_.y, static_cast<unsigned>(width),
                          static_cast<unsigned>(height), 0, CopyFromParent, InputOutput, CopyFromParent,
                          CWOverrideRedirect | CWBackPixel, &attributes);
  XSelectInput(display, window_, SubstructureRedirectMask);  // so that icons cannot choose their size
  XMapRaised(display, window_);
  const Atom selection = connection_->atom("_NET_SYSTEM_TRAY_S0");
  XSetSelectionOwner(display, selection, window_, CurrentTime);
  XClientMessageEvent message{};
  message.type = ClientMessage;
  message.window = connection_->root();
  message.message_type = connection_->atom("MANAGER");
  message.format = 32;
  message.data.l[1] = static_cast<long>(selection);
  message.data.l[2] = static_cast<long>(window_);
  XSendEvent(display, connection_->root(), False, StructureNotifyMask, reinterpret_cast<XEvent*>(&message));
  XSync(display, False);
  events_.emplace(connection_->fileDescriptor(), 0, [this] { readEvents(); });
}

void NarrowTray::readEvents() {
  auto* display = connection_->get();
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    if (event.type == MapRequest) XMapWindow(display, event.xmaprequest.window);
    if (event.type == ConfigureRequest) fit(event.xconfigurerequest.window);
    if (event.type != ClientMessage) continue;
    if (event.xclient.message_type != connection_->atom("_NET_SYSTEM_TRAY_OPCODE")) continue;
    icon_ = static_cast<Window>(event.xclient.data.l[2]);
    XReparentWindow(display, icon_, window_, 0, 0);
    fit(icon_);
    XMapWindow(display, icon_);
    XSync(display, False);
  }
}

void NarrowTray::fit(Window icon) {
  if (sizes_ == Sizes::asRequested) return;
  auto* display = connection_->get();
  XMoveResizeWindow(display, icon, 0, 0, static_cast<unsigned>(slot_.width),
                    static_cast<unsigned>(slot_.height));
  // The client waits for an answer, and the server sends none when nothing changed.
  XConfigureEvent answer{};
  answer.type = ConfigureNotify;
  answer.event = icon;
  answer.window = icon;
  answer.x = slot_.x;
  answer.y = slot_.y;
  answer.width = slot_.width;
  answer.height = slot_.height;
  XSendEvent(display, icon, False, StructureNotifyMask, reinterpret_cast<XEvent*>(&answer));
  XSync(display, False);
}

std::optional<int> NarrowTray::iconWidth() const {
  const ErrorTrap trap(connection_->get());
  XWindowAttributes attributes;
  if (XGetWindowAttributes(connection_->get(), icon_, &attributes) == 0) return std::nullopt;
  return attributes.width;
}

NarrowTray::Look NarrowTray::look() {
  auto* display = connection_->get();
  XImage* image =
      XGetImage(display, connection_->root(), slot_.x, slot_.y, static_cast<unsigned>(slot_.width),
                static_cast<unsigned>(slot_.height), AllPlanes, ZPixmap);
  Look look;
  if (image == nullptr) return look;
  for (int y = 0; y < slot_.height; ++y) {
    for (int x = 0; x < slot_.width; ++x) {
      const auto green = (XGetPixel(image, x, y) >> 8) & 0xFF;
      ++(green > 127 ? look.bright : look.dark);
    }
  }
  XDestroyImage(image);
  return look;
}

}  // namespace keyvora::x11
