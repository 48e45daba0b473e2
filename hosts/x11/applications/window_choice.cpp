#include "hosts/x11/applications/window_choice.h"

#include <algorithm>
#include <vector>

#include "hosts/x11/applications/desktop_windows.h"
#include "hosts/x11/applications/window_description.h"

namespace keyvora::x11 {
namespace {

std::vector<Window> topmostFirst(Display* display) {
  auto windows = stackedWindows(display);
  std::ranges::reverse(windows);
  return windows;
}

bool isManaged(Display* display, Window window) {
  const auto listed = listedWindows(display);
  return !listed || std::ranges::find(*listed, window) != listed->end();
}

/// Whether `window` is `owner`, a dialog of it, or a dialog of such a dialog.
bool belongsTo(Display* display, Window window, Window owner, platform::ProcessIdentifier process) {
  for (int depth = 0; depth <= deepestDialog && window != None; ++depth) {
    const auto description = describeWindow(display, window);
    if (description.process != process) return false;
    if (window == owner) return true;
    window = description.transientFor;
  }
  return false;
}

}  // namespace

Window frontOf(Display* display, Window window, platform::ProcessIdentifier process) {
  if (!isManaged(display, window)) return None;
  const auto description = describeWindow(display, window);
  if (description.process != process) return None;
  const auto isOfProcess = [&](Window other) { return describeWindow(display, other).process == process; };
  const auto isOurs = [&](Window other) { return belongsTo(display, other, window, process); };
  const Window active = activeWindow(display);
  if (active == window || isOurs(active)) return active;
  const bool anotherIsActive = isOfProcess(active);
  const auto windows = topmostFirst(display);
  const auto ours = std::ranges::find_if(windows, isOurs);
  if (description.sharesKeys && (anotherIsActive || std::ranges::find_if(windows, isOfProcess) != ours)) {
    return None;
  }
  return ours == windows.end() ? window : *ours;
}

Window anyWindowOf(Display* display, platform::ProcessIdentifier process) {
  const auto standsIn = [display](const WindowDescription& window) {
    return !identify(window, [display](Window other) { return describeWindow(display, other); }).empty();
  };
  const auto active = describeWindow(display, activeWindow(display));
  const bool isInFront = active.process == process;
  if (isInFront && standsIn(active)) return active.window;

  // The process may show windows of several applications; those of a known application come first.
  Window highest = None;
  for (const Window window : topmostFirst(display)) {
    const auto description = describeWindow(display, window);
    if (description.process != process) continue;
    if (standsIn(description)) return window;
    if (highest == None) highest = window;
  }
  return isInFront ? active.window : highest;
}

}  // namespace keyvora::x11
