#include "hosts/x11/accessibility/accessibility.h"

#include <X11/Xlib.h>
#include <gio/gio.h>

#include <cstdlib>

#include "hosts/x11/accessibility/element.h"
#include "hosts/x11/display.h"
#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

constexpr int busTimeoutMilliseconds = 2000;

/// Whether the session has an accessibility bus; where one can be started, it is. One that does not answer in
/// time is there: on a busy machine it takes longer to start than anybody should wait.
bool hasAccessibilityBus() {
  if (const char* address = std::getenv("AT_SPI_BUS_ADDRESS"); address != nullptr && *address != '\0') {
    return true;
  }
  const GObjectRef<GDBusConnection> session(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  if (!session) return false;
  g_dbus_connection_set_exit_on_close(session.get(), FALSE);  // a bus that ends is not the end of keyvora
  GError* raw = nullptr;
  const GVariantRef answer(g_dbus_connection_call_sync(
      session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
      G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, busTimeoutMilliseconds, nullptr, &raw));
  const GErrorRef error(raw);
  return answer || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
}

}  // namespace

bool Accessibility::isTrusted() {
  return !problem();
}

bool Accessibility::isTrustedPrompting() {
  if (!hasAccessibilityBus()) {
    notices_.say("There is no accessibility bus: menu actions do not work, all others do.");
  }
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
