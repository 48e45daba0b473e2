#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "hosts/simulated/world.h"
#include "platform/bundles.h"

namespace keyvora::simulated {

/// What a bundle holds, as a test describes it.
struct BundleContents {
  std::filesystem::path directory;
  std::optional<std::filesystem::path> resourceDirectory;
  /// Files by the name of the resource with its extension: "mappings.json".
  std::map<std::string, std::filesystem::path, std::less<>> resources;
  /// The text values of the information dictionary.
  std::map<std::string, std::string, std::less<>> information;
  std::optional<std::string> identifier;
};

/// Bundles in memory. Change what they hold before the program looks: any thread may read them.
class Bundles final : public platform::Bundles {
 public:
  explicit Bundles(World& world);
  ~Bundles() override;

  /// The running program's bundle: keyvora 1.2 (42), at first.
  BundleContents mainBundle;

  /// The bundle that contains the code; the same directories as the main one, at first.
  BundleContents containingBundle;

  /// The bundles that can be opened, by directory; at first the one with the default mapping document, among
  /// the main bundle's resources.
  std::map<std::filesystem::path, BundleContents> others;

  const platform::Bundle& main() override;
  const platform::Bundle& containing() override;
  std::unique_ptr<platform::Bundle> open(const std::filesystem::path& directory) override;

 private:
  class View;

  World& world_;
  std::unique_ptr<View> main_;
  std::unique_ptr<View> containing_;
};

}  // namespace keyvora::simulated
