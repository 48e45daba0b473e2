#include "platform/x11/toolkit.h"

#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "platform/x11/display.h"

namespace keyvora::x11 {
namespace {

/// Takes a variable out of the environment and puts it back: the programs that the user opens from here are
/// to find it as it was.
class WithoutVariable {
 public:
  explicit WithoutVariable(const char* name) : name_(name) {
    if (const char* value = std::getenv(name)) value_ = value;
    unsetenv(name);
  }
  ~WithoutVariable() {
    if (value_) setenv(name_, value_->c_str(), 1);
  }
  WithoutVariable(const WithoutVariable&) = delete;
  WithoutVariable& operator=(const WithoutVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> value_;
};

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
  const WithoutVariable userChoice("GDK_BACKEND");
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
