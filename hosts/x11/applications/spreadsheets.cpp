#include "hosts/x11/applications/spreadsheets.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace keyvora::x11 {
namespace {

/// The name of a desktop file: a whole name, or its beginning and end with a version in between.
struct DesktopFile {
  std::string_view start;
  std::string_view end;
};

constexpr std::string_view calc = "calc";
constexpr std::string_view gnumeric = "gnumeric";

constexpr std::array calcFiles{
    DesktopFile{"libreoffice", "-calc.desktop"},                  // distributions, and libreoffice7.6-calc
    DesktopFile{"libreoffice_calc.desktop", ""},                  // snap
    DesktopFile{"org.libreoffice.LibreOffice.calc.desktop", ""},  // flatpak
};
constexpr std::array gnumericFiles{
    DesktopFile{"gnumeric.desktop", ""},
    DesktopFile{"org.gnumeric.gnumeric.desktop", ""},
    DesktopFile{"org.gnumeric.Gnumeric.desktop", ""},
};

bool isOneOf(const auto& files, std::string_view name) {
  for (const auto& file : files) {
    if (file.end.empty() ? name == file.start : name.starts_with(file.start) && name.ends_with(file.end)) {
      return true;
    }
  }
  return false;
}

/// The directories in the variable, or its default value.
std::vector<std::filesystem::path> dataDirectories() {
  const char* variable = std::getenv("XDG_DATA_DIRS");
  std::string_view rest = variable != nullptr && *variable != '\0' ? variable : "/usr/local/share:/usr/share";
  std::vector<std::filesystem::path> directories;
  while (!rest.empty()) {
    const auto end = rest.find(':');
    const std::filesystem::path directory = rest.substr(0, end);
    if (directory.is_absolute()) directories.push_back(directory);  // relative ones must be ignored
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return directories;
}

}  // namespace

std::string_view installedSpreadsheet() {
  bool hasGnumeric = false;
  for (const auto& directory : dataDirectories()) {
    std::error_code error;
    std::filesystem::directory_iterator file(directory / "applications", error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
      const auto name = file->path().filename().string();
      if (isOneOf(calcFiles, name)) return calc;
      hasGnumeric = hasGnumeric || isOneOf(gnumericFiles, name);
    }
  }
  return hasGnumeric ? gnumeric : calc;
}

}  // namespace keyvora::x11
