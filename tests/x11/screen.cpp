#include "tests/x11/screen.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>

#include "hosts/x11/applications/window_property.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

std::string titleOf(Display* display, Window window, Atom property) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  XGetWindowProperty(display, window, property, 0, 1024, False, AnyPropertyType, &type, &format, &count,
                     &rest, &data);
  std::string title;
  if (data != nullptr) title.assign(reinterpret_cast<char*>(data), format == 8 ? count : 0);
  if (data != nullptr) XFree(data);
  return title;
}

std::optional<Window> find(Display* display, Window parent, const std::string& title, Atom property) {
  Window root = None;
  Window up = None;
  Window* children = nullptr;
  unsigned count = 0;
  std::optional<Window> found;
  if (XQueryTree(display, parent, &root, &up, &children, &count) == 0) return found;
  for (unsigned index = 0; index < count && !found; ++index) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(display, children[index], &attributes) == 0) continue;
    if (attributes.map_state == IsViewable && titleOf(display, children[index], property) == title) {
      found = children[index];
    } else {
      found = find(display, children[index], title, property);
    }
  }
  if (children != nullptr) XFree(children);
  return found;
}

}  // namespace

Screen::Screen() : connection_(Connection::open("")) {}

std::optional<Screen::Area> Screen::window(const std::string& title) {
  const ErrorTrap trap(connection_->get());
  const auto found = find(connection_->get(), connection_->root(), title, connection_->atom("_NET_WM_NAME"));
  XWindowAttributes attributes;
  if (!found || XGetWindowAttributes(connection_->get(), *found, &attributes) == 0) return std::nullopt;
  Area area{0, 0, attributes.width, attributes.height};
  Window child = None;
  XTranslateCoordinates(connection_->get(), *found, connection_->root(), 0, 0, &area.x, &area.y, &child);
  return area;
}

std::optional<Screen::Area> Screen::awaitWindow(const std::string& title) {
  std::optional<Area> area;
  runUntil([&] { return (area = window(title)).has_value(); });
  return area;
}

std::optional<Screen::Area> Screen::settledWindow(const std::string& title) {
  constexpr std::chrono::milliseconds quiet{50};
  const auto end = std::chrono::steady_clock::now() + quiet;
  runUntil([&end] { return std::chrono::steady_clock::now() > end; });
  return window(title);
}

bool Screen::awaitNoWindow(const std::string& title) {
  return runUntil([&] { return !window(title); });
}

std::size_t Screen::managedWindows() {
  return numbersOf(connection_->get(), connection_->root(), connection_->atom("_NET_CLIENT_LIST"), XA_WINDOW)
      .value_or(std::vector<unsigned long>{})
      .size();
}

void Screen::click(const Area& area, unsigned button) {
  auto* display = connection_->get();
  XTestFakeMotionEvent(display, -1, area.x + area.width / 2, area.y + area.height / 2, CurrentTime);
  XTestFakeButtonEvent(display, button, True, CurrentTime);
  XTestFakeButtonEvent(display, button, False, CurrentTime);
  XSync(display, False);
}

void Screen::press(KeySym key, KeySym modifier) {
  auto* display = connection_->get();
  const auto send = [display](KeySym symbol, Bool down) {
    if (symbol != NoSymbol) XTestFakeKeyEvent(display, XKeysymToKeycode(display, symbol), down, CurrentTime);
  };
  send(modifier, True);
  send(key, True);
  send(key, False);
  send(modifier, False);
  XSync(display, False);
}

}  // namespace keyvora::x11
