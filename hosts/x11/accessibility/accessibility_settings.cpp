#include "hosts/x11/accessibility/accessibility_settings.h"

#include <glib.h>

#include <array>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

struct SettingsProgram {
  /// The name in XDG_CURRENT_DESKTOP, which may list several, separated by colons.
  std::string_view desktop;
  const char* program;
  /// The page to open; empty for a program that has only this page.
  const char* page;
};

constexpr std::array programs{
    SettingsProgram{"GNOME", "gnome-control-center", "universal-access"},
    SettingsProgram{"MATE", "mate-at-properties", ""},
    SettingsProgram{"XFCE", "xfce4-accessibility-settings", ""},
    SettingsProgram{"KDE", "systemsettings", "kcm_access"},
    SettingsProgram{"KDE", "systemsettings5", "kcm_access"},
    SettingsProgram{"X-Cinnamon", "cinnamon-settings", "accessibility"},
    SettingsProgram{"Budgie", "budgie-control-center", "universal-access"},
    SettingsProgram{"Unity", "unity-control-center", "universal-access"},
};

bool runs(std::string_view currentDesktop, std::string_view desktop) {
  return (":" + std::string(currentDesktop) + ":").find(":" + std::string(desktop) + ":") !=
         std::string::npos;
}

bool isInstalled(const SettingsProgram& settings) {
  return GText(g_find_program_in_path(settings.program)) != nullptr;
}

std::vector<std::string> command(const SettingsProgram& settings) {
  std::vector<std::string> words{settings.program};
  if (*settings.page != '\0') words.emplace_back(settings.page);
  return words;
}

}  // namespace

std::optional<std::vector<std::string>> accessibilitySettingsCommand(std::string_view currentDesktop) {
  const SettingsProgram* found = nullptr;
  for (const auto& settings : programs) {
    if (!isInstalled(settings)) continue;
    if (runs(currentDesktop, settings.desktop)) return command(settings);
    if (found == nullptr) found = &settings;
  }
  if (found == nullptr) return std::nullopt;
  return command(*found);
}

}  // namespace keyvora::x11
