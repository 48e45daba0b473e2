#include "hosts/x11/accessibility/accessibility.h"

#include <X11/Xlib.h>

#include "hosts/x11/accessibility/element.h"
#include "hosts/x11/display.h"

namespace keyvora::x11 {

bool Accessibility::isTrusted() {
  return !problem();
}

bool Accessibility::isTrustedPrompting() {
  const auto missing = problem();
  if (missing) notices_.say(*missing + " Key sequences do not work, the menu and updates do.");
  return !missing;
}

std::optional<std::string> Accessibility::problem() {
  const std::string display = XDisplayName(nullptr);
  if (!display.empty() && display == goodDisplay_) return std::nullopt;
  auto missing = displayProblem(display);
  if (!missing) goodDisplay_ = display;
  return missing;
}

platform::ElementRef Accessibility::application(platform::ProcessIdentifier process) {
  return applicationElement(process, applications_, tap_);
}

}  // namespace keyvora::x11
