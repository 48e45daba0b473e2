#include "platform/x11/applications/window_list.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>

#include "platform/x11/applications/target_registry.h"
#include "platform/x11/applications/window_property.h"

namespace keyvora::x11 {
namespace {

/// How many windows a dialog may be away from the window that it belongs to; ends a circle of dialogs.
constexpr int deepestDialog = 8;

constexpr long windowEvents = PropertyChangeMask | StructureNotifyMask;

std::string_view bundleIdentifierByClass(Display* display, Window window) {
  XClassHint hint{};
  if (XGetClassHint(display, window, &hint) == 0) return {};
  const auto identifier = bundleIdentifierOf(hint.res_name == nullptr ? "" : hint.res_name,
                                             hint.res_class == nullptr ? "" : hint.res_class);
  XFree(hint.res_name);
  XFree(hint.res_class);
  return identifier;
}

}  // namespace

WindowList::WindowList(Display* display)
    : display_(display),
      root_(DefaultRootWindow(display)),
      clientListAtom_(XInternAtom(display, "_NET_CLIENT_LIST", False)),
      stackingAtom_(XInternAtom(display, "_NET_CLIENT_LIST_STACKING", False)),
      activeAtom_(XInternAtom(display, "_NET_ACTIVE_WINDOW", False)),
      processAtom_(XInternAtom(display, "_NET_WM_PID", False)) {
  XSelectInput(display_, root_, PropertyChangeMask);
  readClients();
  readActive();
  update();
}

bool WindowList::notice(const XEvent& event) {
  if (event.type == DestroyNotify) {
    const auto gone = event.xdestroywindow.window;
    const auto erased = std::erase_if(descriptions_, [gone](const auto& it) { return it.window == gone; });
    if (erased == 0) return false;
    if (activeWindow_ == gone) activeWindow_ = None;  // not every window manager says so when it was the last
  } else if (event.type == PropertyNotify && event.xproperty.window == root_) {
    if (event.xproperty.atom == clientListAtom_) {
      readClients();
    } else if (event.xproperty.atom == activeAtom_) {
      readActive();
    } else {
      return false;
    }
  } else if (event.type == PropertyNotify) {
    const auto atom = event.xproperty.atom;
    if (atom != XA_WM_CLASS && atom != XA_WM_TRANSIENT_FOR && atom != processAtom_) return false;
    // Some toolkits say what a window is only after showing it, and some change their minds.
    const auto found = std::ranges::find(descriptions_, event.xproperty.window, &Description::window);
    if (found == descriptions_.end()) return false;
    *found = describe(found->window);
  } else {
    return false;
  }
  update();
  return true;
}

std::vector<Window> WindowList::stacking() const {
  return numbersOf(display_, root_, stackingAtom_, XA_WINDOW).value_or(std::vector<Window>{});
}

void WindowList::readClients() {
  const auto listed = numbersOf(display_, root_, clientListAtom_, XA_WINDOW);
  if (!listed) return;
  std::vector<Description> read;
  for (const Window window : *listed) {
    if (const auto* known = described(window)) {
      read.push_back(*known);
    } else {
      XSelectInput(display_, window, windowEvents);
      read.push_back(describe(window));
    }
  }
  descriptions_ = std::move(read);
}

void WindowList::readActive() {
  const auto active = numbersOf(display_, root_, activeAtom_, XA_WINDOW);
  activeWindow_ = active && !active->empty() ? active->front() : None;
}

WindowList::Description WindowList::describe(Window window) const {
  Description description;
  description.window = window;
  description.bundleIdentifier = bundleIdentifierByClass(display_, window);
  XGetTransientForHint(display_, window, &description.transientFor);
  const auto process = numbersOf(display_, window, processAtom_, XA_CARDINAL);
  if (process && !process->empty()) description.process = platform::ProcessIdentifier(process->front());
  return description;
}

const WindowList::Description* WindowList::described(Window window) const {
  const auto found = std::ranges::find(descriptions_, window, &Description::window);
  return found == descriptions_.end() ? nullptr : &*found;
}

std::string_view WindowList::identify(const Description& description) const {
  // A dialog need not carry its application's class, and a process may show windows of several applications:
  // a dialog counts with the window that it was opened from.
  const auto* window = &description;
  for (int depth = 0; depth < deepestDialog; ++depth) {
    if (!window->bundleIdentifier.empty()) return window->bundleIdentifier;
    window = described(window->transientFor);
    if (window == nullptr || window->process != description.process) return {};
  }
  return {};
}

void WindowList::update() {
  managed_.clear();
  for (const auto& description : descriptions_) {
    managed_.push_back({description.window, description.process, identify(description)});
  }
  const auto found = std::ranges::find(managed_, activeWindow_, &ManagedWindow::window);
  if (found != managed_.end()) {
    active_ = *found;
  } else if (activeWindow_ == None) {
    active_ = {};
  } else if (active_.window != activeWindow_) {
    // Window managers announce a new window's activation and its existence in either order.
    const auto description = describe(activeWindow_);
    active_ = {description.window, description.process, identify(description)};
  }
}

}  // namespace keyvora::x11
