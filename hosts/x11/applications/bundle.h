#pragma once

#include "hosts/x11/property_list.h"
#include "platform/bundles.h"

namespace keyvora::x11 {

/// A bundle as a plain directory that contains its resources and its Info.plist. The dictionary is read
/// once, when the bundle is opened.
class Bundle final : public platform::Bundle {
 public:
  /// `resources` is the directory itself, unless the bundle has its resources elsewhere.
  Bundle(std::filesystem::path directory, std::filesystem::path resources);

  [[nodiscard]] std::filesystem::path directory() const override;
  [[nodiscard]] std::optional<std::filesystem::path> resourceDirectory() const override;

  /// For "mappings.json", the variant for the installed spreadsheet, if the bundle has it.
  [[nodiscard]] std::optional<std::filesystem::path> resource(std::string_view name,
                                                              std::string_view extension) const override;

  [[nodiscard]] std::optional<std::string> information(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> identifier() const override;

 private:
  [[nodiscard]] std::optional<std::filesystem::path> file(std::string_view name,
                                                          std::string_view extension) const;

  std::filesystem::path directory_;
  std::filesystem::path resources_;
  std::optional<PropertyList> information_;
};

}  // namespace keyvora::x11
