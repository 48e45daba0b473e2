#include "hosts/x11/workspace.h"

#include <gio/gio.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "hosts/x11/accessibility/accessibility_settings.h"
#include "hosts/x11/gobject.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

/// An address or file being opened, until the desktop has answered.
struct Opening {
  std::string what;
  Notices& notices;
};

void opened(GObject*, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<Opening> opening(static_cast<Opening*>(data));
  GError* raw = nullptr;
  g_app_info_launch_default_for_uri_finish(result, &raw);
  const GErrorRef error(raw);
  if (error) opening->notices.say(opening->what + " cannot be opened: " + error->message);
}

void open(const char* address, const std::string& what, Notices& notices) {
  // The context tells the window manager that the user requested the new window.
  const GObjectRef<GAppLaunchContext> context(
      openToolkit() ? G_APP_LAUNCH_CONTEXT(gdk_display_get_app_launch_context(gdk_display_get_default()))
                    : g_app_launch_context_new());
  g_app_info_launch_default_for_uri_async(address, context.get(), nullptr, opened,
                                          new Opening{what, notices});
}

void start(std::vector<std::string> command, Notices& notices) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (auto& word : command) words.push_back(word.data());
  words.push_back(nullptr);
  GError* raw = nullptr;
  g_spawn_async(nullptr, words.data(), nullptr, G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, &raw);
  const GErrorRef error(raw);
  if (error) notices.say(command.front() + " cannot be started: " + error->message);
}

}  // namespace

void Workspace::openFile(const std::string& path) {
  GError* raw = nullptr;
  const GText address(g_filename_to_uri(path.c_str(), nullptr, &raw));
  const GErrorRef error(raw);
  if (address) open(address.get(), path, notices_);
}

void Workspace::openAddress(const std::string& address) {
  if (address == accessibilitySettingsAddress) {
    const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
    if (auto command = accessibilitySettingsCommand(desktop == nullptr ? "" : desktop)) {
      start(std::move(*command), notices_);
    } else {
      notices_.say(
          "This desktop has no accessibility settings that are known here. None are needed: the "
          "display is all that key sequences ask for.");
    }
    return;
  }
  if (g_uri_is_valid(address.c_str(), G_URI_FLAGS_NONE, nullptr)) open(address.c_str(), address, notices_);
}

}  // namespace keyvora::x11
