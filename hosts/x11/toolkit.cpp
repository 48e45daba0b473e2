#include "hosts/x11/toolkit.h"

#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "hosts/posix/temporary_variable.h"
#include "hosts/x11/display.h"

namespace keyvora::x11 {
namespace {

bool displayFound = false;

constexpr auto openGlVariable = "GDK_GL";
constexpr auto backendVariable = "GDK_BACKEND";

bool isSet(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

bool openDisplay() {
  std::signal(SIGPIPE, SIG_IGN);
  installErrorHandlers();  // before GTK, which needs Xlib initialised for threads
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_NUMERIC, "C");  // messages in the user's language, but a decimal point in numbers
  gtk_disable_setlocale();
  gdk_set_allowed_backends("x11");
  g_set_prgname("keyvora");
  g_set_application_name("keyvora");
  // So that it exists and can be changed; GTK ignores an empty value.
  setenv(openGlVariable, "", 0);
  displayFound = Connection::open("") != nullptr;
  return displayFound;
}

bool hasDisplay() {
  return displayFound;
}

bool openToolkit() {
  if (isToolkitOpen()) return true;
  if (!displayFound) return false;
  // Restored afterwards, so that programs opened from here get the user's environment. If these variables
  // are changed at all, they exist: changing one does not move the others while another thread reads them.
  std::optional<posix::TemporaryVariable> noOtherBackend;
  if (isSet(backendVariable)) noOtherBackend.emplace(backendVariable, "x11");
  // keyvora does not draw with OpenGL. Without this, the first GTK program on a display loads its driver to
  // choose a visual: without a graphics card that is a whole compiler, which stays in memory.
  const posix::TemporaryVariable noOpenGl(openGlVariable, "disable");
  const bool opened = gtk_init_check(nullptr, nullptr);
  installErrorHandlers();
  return opened;
}

void loadTheme() {
  if (isToolkitOpen()) gtk_settings_get_default();
}

bool isToolkitOpen() {
  return gdk_display_get_default() != nullptr;
}

bool isWaylandSession() {
  const char* type = std::getenv("XDG_SESSION_TYPE");
  return isSet("WAYLAND_DISPLAY") || (type != nullptr && std::string_view(type) == "wayland");
}

}  // namespace keyvora::x11
