#include "hosts/x11/applications/window_list.h"

#include <algorithm>

#include "hosts/x11/applications/desktop_windows.h"

namespace keyvora::x11 {

WindowList::WindowList(Display* display) : display_(display), root_(DefaultRootWindow(display)) {
  XSelectInput(display_, root_, PropertyChangeMask);
  readClients();
  readActive();
  update();
}

bool WindowList::notice(const XEvent& event) {
  // Sent by another program and not by the server: ignored.
  if (event.xany.send_event != False) return false;
  if (event.type == DestroyNotify) {
    const auto gone = event.xdestroywindow.window;
    const auto erased = std::erase_if(descriptions_, [gone](const auto& it) { return it.window == gone; });
    if (erased == 0) return false;
    // Some window managers do not update the property after the last window.
    if (activeWindow_ == gone) activeWindow_ = None;
  } else if (event.type != PropertyNotify) {
    return false;
  } else if (event.xproperty.window == root_) {
    if (!rootChanged(event.xproperty.atom)) return false;
  } else {
    // Some toolkits set these properties only after showing the window, and some change them later.
    if (!isDescribing(display_, event.xproperty.atom)) return false;
    if (!describeAgain(event.xproperty.window)) return false;
  }
  update();
  return true;
}

ManagedWindow WindowList::find(Window window) const {
  const auto found = std::ranges::find(managed_, window, &ManagedWindow::window);
  return found == managed_.end() ? ManagedWindow{} : *found;
}

Window WindowList::ownerOf(Window window) const {
  auto description = described(window);
  for (int depth = 0; description && depth < deepestDialog; ++depth) {
    if (description->transientFor == None || description->transientFor == root_) return description->window;
    description = described(description->transientFor);
  }
  return None;
}

bool WindowList::rootChanged(Atom property) {
  if (property == listProperty(display_)) {
    readClients();
  } else if (property == activeProperty(display_)) {
    readActive();
  } else {
    return false;
  }
  return true;
}

void WindowList::readClients() {
  const auto listed = listedWindows(display_);
  if (!listed) return;
  std::vector<WindowDescription> read;
  for (const Window window : *listed) {
    const auto known = described(window);
    read.push_back(known ? *known : describe(window));
  }
  descriptions_ = std::move(read);
}

void WindowList::readActive() {
  activeWindow_ = activeWindow(display_);
  if (activeWindow_ != None) describeAgain(activeWindow_);
}

WindowDescription WindowList::describe(Window window) const {
  // Selecting events before reading misses no change.
  XSelectInput(display_, window, StructureNotifyMask | PropertyChangeMask);
  const auto description = describeWindow(display_, window);
  if (description.isFinal) XSelectInput(display_, window, StructureNotifyMask);
  return description;
}

/// Reads a listed window again; false for a window that is not listed.
bool WindowList::describeAgain(Window window) {
  const auto found = std::ranges::find(descriptions_, window, &WindowDescription::window);
  if (found == descriptions_.end()) return false;
  *found = describe(window);
  return true;
}

std::optional<WindowDescription> WindowList::described(Window window) const {
  const auto found = std::ranges::find(descriptions_, window, &WindowDescription::window);
  return found == descriptions_.end() ? std::nullopt : std::optional(*found);
}

ManagedWindow WindowList::managed(const WindowDescription& description) const {
  return {description.window, description.process,
          identify(description, [this](Window window) { return described(window); })};
}

void WindowList::update() {
  managed_.clear();
  for (const auto& description : descriptions_) managed_.push_back(managed(description));
  const auto found = std::ranges::find(managed_, activeWindow_, &ManagedWindow::window);
  if (found != managed_.end()) {
    active_ = *found;
  } else if (activeWindow_ == None) {
    active_ = {};
  } else if (active_.window != activeWindow_) {
    // A window manager may announce a new window's activation before the window itself.
    active_ = managed(describeWindow(display_, activeWindow_));
  }
}

}  // namespace keyvora::x11
