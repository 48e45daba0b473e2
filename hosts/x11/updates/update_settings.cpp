#include "hosts/x11/updates/update_settings.h"

#include <glib.h>

#include <algorithm>
#include <chrono>

#include "hosts/x11/property_list.h"

namespace keyvora::x11 {
namespace {

constexpr std::chrono::seconds leastInterval = std::chrono::hours(1);

std::vector<std::string> userLanguages() {
  std::vector<std::string> languages;
  for (const auto* name = g_get_language_names(); *name != nullptr; ++name) languages.emplace_back(*name);
  return languages;
}

}  // namespace

appcast::Settings updateSettings(const platform::Bundle& bundle) {
  appcast::Settings settings;
  settings.languages = userLanguages();
  const auto resources = bundle.resourceDirectory();
  const auto list =
      resources ? readPropertyList(*resources / "Info.plist").value_or(PropertyList{}) : PropertyList{};
  const auto text = [&list](const char* key) { return property<std::string>(list, key); };
  const auto seconds = [&list](const char* key, std::chrono::seconds otherwise) {
    const auto number = property<std::int64_t>(list, key).value_or(otherwise.count());
    constexpr std::chrono::seconds year = std::chrono::days(366);
    return std::chrono::seconds(std::clamp<std::int64_t>(number, 1, year.count()));
  };

  settings.feedAddress = text("SUFeedURL").value_or("");
  settings.version = text("CFBundleVersion").value_or("0");
  settings.displayVersion = text("CFBundleShortVersionString").value_or("dev");
  settings.checksAutomatically = property<bool>(list, "SUEnableAutomaticChecks").value_or(false);
  settings.checkInterval =
      std::max(leastInterval, seconds("SUScheduledCheckInterval", settings.checkInterval));
  settings.fetchTimeout = seconds("KeyvoraUpdateTimeout", settings.fetchTimeout);
  return settings;
}

}  // namespace keyvora::x11
