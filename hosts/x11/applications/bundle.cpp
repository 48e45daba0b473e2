#include "hosts/x11/applications/bundle.h"

#include <utility>

#include "hosts/x11/applications/spreadsheets.h"

namespace keyvora::x11 {

Bundle::Bundle(std::filesystem::path directory, std::filesystem::path resources)
    : directory_(std::move(directory)),
      resources_(std::move(resources)),
      information_(readPropertyList(resources_ / "Info.plist")) {}

std::filesystem::path Bundle::directory() const {
  return directory_;
}

std::optional<std::filesystem::path> Bundle::resourceDirectory() const {
  return resources_;
}

std::optional<std::filesystem::path> Bundle::resource(std::string_view name,
                                                      std::string_view extension) const {
  if (name == "mappings" && extension == "json") {
    if (auto variant = file(installedSpreadsheet(), extension)) return variant;
  }
  return file(name, extension);
}

std::optional<std::filesystem::path> Bundle::file(std::string_view name, std::string_view extension) const {
  auto path = resources_ / name;
  if (!extension.empty()) path += "." + std::string(extension);
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return std::nullopt;
  return path;
}

std::optional<std::string> Bundle::information(std::string_view key) const {
  if (!information_) return std::nullopt;
  return property<std::string>(*information_, key);
}

std::optional<std::string> Bundle::identifier() const {
  return information("CFBundleIdentifier");
}

}  // namespace keyvora::x11
