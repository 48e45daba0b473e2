#include "hosts/x11/toolkit.h"

#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "hosts/x11/display.h"
#include "hosts/x11/temporary_variable.h"

namespace keyvora::x11 {
namespace {

bool isSet(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

bool startToolkit() {
  std::signal(SIGPIPE, SIG_IGN);
  installErrorHandlers();  // before the toolkit, which must find Xlib ready for threads
  g_set_prgname("keyvora");
  g_set_application_name("keyvora");
  gdk_set_allowed_backends("x11");
  const TemporaryVariable noOtherBackend("GDK_BACKEND", std::nullopt);
  // Nothing here is drawn with OpenGL. Left alone, the first GTK program of a display loads its driver to
  // choose a visual: on a machine without a graphics card a whole compiler, for the life of the program.
  const TemporaryVariable noOpenGl("GDK_GL", "disable");
  const bool started = gtk_init_check(nullptr, nullptr);
  std::setlocale(LC_NUMERIC, "C");  // texts are in the user's language, but numbers are read and written here
  installErrorHandlers();
  return started;
}

bool hasDisplay() {
  return gdk_display_get_default() != nullptr;
}

bool isWaylandSession() {
  const char* type = std::getenv("XDG_SESSION_TYPE");
  return isSet("WAYLAND_DISPLAY") || (type != nullptr && std::string_view(type) == "wayland");
}

}  // namespace keyvora::x11
