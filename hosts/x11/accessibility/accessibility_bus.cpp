#include "hosts/x11/accessibility/accessibility_bus.h"

#include <gio/gio.h>

#include <cstdlib>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

constexpr int busTimeoutMilliseconds = 2000;

}  // namespace

bool hasAccessibilityBus() {
  if (const char* address = std::getenv("AT_SPI_BUS_ADDRESS"); address != nullptr && *address != '\0') {
    return true;
  }
  const GObjectRef<GDBusConnection> session(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  if (!session) return false;
  g_dbus_connection_set_exit_on_close(session.get(), FALSE);  // keyvora goes on when the bus ends
  GError* raw = nullptr;
  const GVariantRef answer(g_dbus_connection_call_sync(
      session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
      G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, busTimeoutMilliseconds, nullptr, &raw));
  const GErrorRef error(raw);
  return answer || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
}

}  // namespace keyvora::x11
