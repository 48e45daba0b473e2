#include "hosts/x11/login_service.h"

#include <glib.h>
#include <unistd.h>

#include <string>
#include <system_error>

#include "hosts/x11/files/directories.h"
#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

using platform::LoginStatus;

struct KeyFileFree {
  void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileFree>;

constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;

std::optional<std::string> entryFile() {
  const auto configuration = configurationDirectory();
  if (!configuration) return std::nullopt;
  return *configuration + "/autostart/org.keyvora.keyvora.desktop";
}

/// An argument in an Exec line: quoted, with special characters escaped and without field codes.
std::string execWord(const std::string& word) {
  std::string quoted = "\"";
  for (const char character : word) {
    if (std::string_view("\"`$\\").find(character) != std::string_view::npos) quoted += '\\';
    if (character == '%') quoted += '%';
    quoted += character;
  }
  return quoted + "\"";
}

std::string entryText(const std::filesystem::path& executable) {
  const KeyFile entry(g_key_file_new());
  const auto set = [&entry](const char* key, const std::string& value) {
    g_key_file_set_string(entry.get(), group, key, value.c_str());
  };
  set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
  set(G_KEY_FILE_DESKTOP_KEY_NAME, "keyvora");
  set(G_KEY_FILE_DESKTOP_KEY_COMMENT, "Key sequences for Excel in the manner of ribbon key tips");
  set(G_KEY_FILE_DESKTOP_KEY_EXEC, execWord(executable.string()));
  set(G_KEY_FILE_DESKTOP_KEY_ICON, "keyvora");
  set(G_KEY_FILE_DESKTOP_KEY_TERMINAL, "false");
  return GText(g_key_file_to_data(entry.get(), nullptr, nullptr)).get();
}

/// A boolean key of the entry; `absent` when it is missing.
bool flag(GKeyFile* entry, const char* key, bool absent) {
  GError* raw = nullptr;
  const bool value = g_key_file_get_boolean(entry, group, key, &raw);
  const GErrorRef error(raw);
  return error ? absent : value;
}

}  // namespace

LoginStatus LoginService::status() {
  const auto file = entryFile();
  if (!file) return LoginStatus::notFound;
  if (access(file->c_str(), F_OK) != 0) return LoginStatus::notRegistered;  // without the cost of a parser
  const KeyFile entry(g_key_file_new());
  if (!g_key_file_load_from_file(entry.get(), file->c_str(), G_KEY_FILE_NONE, nullptr)) {
    return LoginStatus::notRegistered;
  }
  const bool switchedOff = flag(entry.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN, false) ||
                           !flag(entry.get(), "X-GNOME-Autostart-enabled", true);
  const GText command(g_key_file_get_string(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_EXEC, nullptr));
  return switchedOff || !command ? LoginStatus::notRegistered : LoginStatus::enabled;
}

std::optional<std::string> LoginService::registerProgram() {
  const auto file = entryFile();
  if (!file) return "there is no home directory to write an autostart entry to";
  const auto folder = std::filesystem::path(*file).parent_path();
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  if (failed) return folder.string() + " cannot be created: " + failed.message();
  const auto text = entryText(executable_);
  GError* raw = nullptr;
  g_file_set_contents(file->c_str(), text.data(), static_cast<gssize>(text.size()), &raw);
  const GErrorRef error(raw);
  if (error) return *file + " cannot be written: " + error->message;
  return std::nullopt;
}

std::optional<std::string> LoginService::unregisterProgram() {
  const auto file = entryFile();
  if (!file) return "there is no home directory with an autostart entry";
  std::error_code failed;
  std::filesystem::remove(*file, failed);
  if (failed) return *file + " cannot be removed: " + failed.message();
  return std::nullopt;
}

}  // namespace keyvora::x11
