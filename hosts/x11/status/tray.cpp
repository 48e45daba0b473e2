#include "hosts/x11/status/tray.h"

#include <X11/Xatom.h>

#include <string>
#include <utility>

#include "hosts/x11/display.h"

namespace keyvora::x11 {
namespace {

/// SYSTEM_TRAY_REQUEST_DOCK, from the System Tray Protocol.
constexpr long requestDock = 0;

}  // namespace

Tray::Tray(std::function<void()> onChange)
    : onChange_(std::move(onChange)),
      screen_(gdk_screen_get_default()),
      display_(gdk_screen_get_display(screen_)),
      x_(GDK_DISPLAY_XDISPLAY(display_)),
      selection_(XInternAtom(x_, ("_NET_SYSTEM_TRAY_S" + std::to_string(GDK_SCREEN_XNUMBER(screen_))).c_str(),
                             False)),
      manager_(XInternAtom(x_, "MANAGER", False)) {
  // A new tray announces itself on the root window.
  auto* root = gdk_screen_get_root_window(screen_);
  gdk_window_set_events(root, static_cast<GdkEventMask>(gdk_window_get_events(root) | GDK_STRUCTURE_MASK));
  gdk_window_add_filter(nullptr, filter, this);
  findOwner();
}

Tray::~Tray() {
  gdk_window_remove_filter(nullptr, filter, this);
}

GdkFilterReturn Tray::filter(GdkXEvent* event, GdkEvent*, gpointer tray) {
  static_cast<Tray*>(tray)->see(*static_cast<XEvent*>(event));
  return GDK_FILTER_CONTINUE;
}

void Tray::see(const XEvent& event) {
  const bool appeared = event.type == ClientMessage && event.xclient.message_type == manager_ &&
                        static_cast<Atom>(event.xclient.data.l[1]) == selection_;
  const bool gone = event.type == DestroyNotify && owner_ != None && event.xdestroywindow.window == owner_;
  if (!appeared && !gone) return;
  owner_ = None;
  findOwner();
  onChange_();
}

/// Looks for the owner and listens for its end, with the server held so that it cannot end in between.
void Tray::findOwner() {
  XGrabServer(x_);
  owner_ = XGetSelectionOwner(x_, selection_);
  if (owner_ != None) XSelectInput(x_, owner_, StructureNotifyMask);
  XUngrabServer(x_);
  XFlush(x_);
}

GdkVisual* Tray::transparentVisual() const {
  const Atom property = XInternAtom(x_, "_NET_SYSTEM_TRAY_VISUAL", False);
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  const ErrorTrap trap(x_);
  if (XGetWindowProperty(x_, owner_, property, 0, 1, False, XA_VISUALID, &type, &format, &count, &rest,
                         &data) != Success) {
    return nullptr;
  }
  GdkVisual* visual = nullptr;
  if (type == XA_VISUALID && format == 32 && count == 1) {
    const auto identifier = *reinterpret_cast<const VisualID*>(data);
    visual = gdk_x11_screen_lookup_visual(screen_, identifier);
  }
  if (data != nullptr) XFree(data);
  constexpr int depthWithAlpha = 32;
  if (visual == nullptr || gdk_visual_get_depth(visual) != depthWithAlpha) return nullptr;
  return visual;
}

void Tray::dock(Window window) const {
  XClientMessageEvent message{};
  message.type = ClientMessage;
  message.window = owner_;
  message.message_type = XInternAtom(x_, "_NET_SYSTEM_TRAY_OPCODE", False);
  message.format = 32;
  message.data.l[0] = CurrentTime;
  message.data.l[1] = requestDock;
  message.data.l[2] = static_cast<long>(window);
  const ErrorTrap trap(x_);
  XSendEvent(x_, owner_, False, NoEventMask, reinterpret_cast<XEvent*>(&message));
}

}  // namespace keyvora::x11
