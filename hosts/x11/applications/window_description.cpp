#include "hosts/x11/applications/window_description.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include "hosts/x11/applications/target_registry.h"
#include "hosts/x11/applications/window_property.h"

namespace keyvora::x11 {
namespace {

Atom processProperty(Display* display) {
  return XInternAtom(display, "_NET_WM_PID", False);
}

/// Sets the fields that depend on the class.
void describeClass(Display* display, WindowDescription& description) {
  XClassHint hint{};
  if (XGetClassHint(display, description.window, &hint) == 0) return;
  const std::string_view instanceName = hint.res_name == nullptr ? "" : hint.res_name;
  const std::string_view className = hint.res_class == nullptr ? "" : hint.res_class;
  description.bundleIdentifier = bundleIdentifierOf(instanceName, className);
  description.sharesKeys = sharesKeys(instanceName, className);
  description.isFinal = !mayBecomeAnother(instanceName, className);
  XFree(hint.res_name);
  XFree(hint.res_class);
}

}  // namespace

WindowDescription describeWindow(Display* display, Window window) {
  WindowDescription description;
  description.window = window;
  if (window == None) return description;
  describeClass(display, description);
  XGetTransientForHint(display, window, &description.transientFor);
  const auto process = numbersOf(display, window, processProperty(display), XA_CARDINAL);
  if (process && !process->empty()) description.process = platform::ProcessIdentifier(process->front());
  if (description.process == 0) description.isFinal = false;
  return description;
}

bool isDescribing(Display* display, Atom property) {
  return property == XA_WM_CLASS || property == XA_WM_TRANSIENT_FOR || property == processProperty(display);
}

std::string_view identify(const WindowDescription& description,
                          const std::function<std::optional<WindowDescription>(Window)>& described) {
  std::optional<WindowDescription> window = description;
  for (int depth = 0; depth < deepestDialog; ++depth) {
    if (!window->bundleIdentifier.empty()) return window->bundleIdentifier;
    if (window->transientFor == None) return {};
    window = described(window->transientFor);
    if (!window || window->process != description.process) return {};
  }
  return {};
}

}  // namespace keyvora::x11
