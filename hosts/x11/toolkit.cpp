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
  installErrorHandlers();  // before the toolkit, which must find Xlib ready for threads
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_NUMERIC, "C");  // texts are in the user's language, but numbers are read and written here
  gtk_disable_setlocale();
  gdk_set_allowed_backends("x11");
  g_set_prgname("keyvora");
  g_set_application_name("keyvora");
  // So that it is there to be changed; empty, it means nothing to GTK.
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
  // The programs that the user opens from here find the environment as it was. Both variables are there, if
  // they are changed at all: setting one that is does not move the others under a thread that reads them.
  std::optional<TemporaryVariable> noOtherBackend;
  if (isSet(backendVariable)) noOtherBackend.emplace(backendVariable, "x11");
  // Nothing here is drawn with OpenGL. Left alone, the first GTK program of a display loads its driver to
  // choose a visual: on a machine without a graphics card a whole compiler, for the life of the program.
  const TemporaryVariable noOpenGl(openGlVariable, "disable");
  const bool opened = gtk_init_check(nullptr, nullptr);
  installErrorHandlers();
  return opened;
}

bool isToolkitOpen() {
  return gdk_display_get_default() != nullptr;
}

bool isWaylandSession() {
  const char* type = std::getenv("XDG_SESSION_TYPE");
  return isSet("WAYLAND_DISPLAY") || (type != nullptr && std::string_view(type) == "wayland");
}

}  // namespace keyvora::x11
