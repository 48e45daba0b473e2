#include "hosts/x11/updates/update_history.h"

#include <glib.h>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace keyvora::x11 {
namespace {

constexpr auto group = "Updates";
constexpr auto lastCheckKey = "LastCheck";  // seconds since 1970
constexpr auto skippedKey = "SkippedVersion";

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

KeyFile load(const std::filesystem::path& file) {
  KeyFile keys(g_key_file_new(), g_key_file_free);
  g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
  return keys;
}

void change(const std::filesystem::path& file, const std::function<void(GKeyFile*)>& set) {
  const auto keys = load(file);
  set(keys.get());
  g_mkdir_with_parents(file.parent_path().c_str(), 0700);
  g_key_file_save_to_file(keys.get(), file.c_str(), nullptr);
}

std::chrono::seconds now() {
  return std::chrono::duration_cast<std::chrono::seconds>(
      std::chrono::system_clock::now().time_since_epoch());
}

}  // namespace

UpdateHistory::UpdateHistory()
    : UpdateHistory(std::filesystem::path(g_get_user_state_dir()) / "keyvora" / "updates") {}

UpdateHistory::UpdateHistory(std::filesystem::path file) : file_(std::move(file)) {}

std::optional<platform::Seconds> UpdateHistory::sinceLastCheck() {
  const std::chrono::seconds last(g_key_file_get_int64(load(file_).get(), group, lastCheckKey, nullptr));
  // The file may contain any number, and subtracting a negative one may overflow.
  if (last.count() <= 0 || last > now()) return std::nullopt;
  return now() - last;
}

void UpdateHistory::recordCheck() {
  change(file_, [](GKeyFile* keys) { g_key_file_set_int64(keys, group, lastCheckKey, now().count()); });
}

std::string UpdateHistory::skippedVersion() {
  const std::unique_ptr<char, decltype(&g_free)> text(
      g_key_file_get_string(load(file_).get(), group, skippedKey, nullptr), g_free);
  return text ? text.get() : "";
}

void UpdateHistory::skipVersion(const std::string& version) {
  change(file_,
         [&version](GKeyFile* keys) { g_key_file_set_string(keys, group, skippedKey, version.c_str()); });
}

}  // namespace keyvora::x11
