#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "hosts/simulated/world.h"
#include "platform/bundles.h"

namespace keyvora::simulated {

/// The content of a bundle, set by a test.
struct BundleContents {
  std::filesystem::path directory;
  std::optional<std::filesystem::path> resourceDirectory;
  /// Files by the name of the resource with its extension: "mappings.json".
  std::map<std::string, std::filesystem::path, std::less<>> resources;
  /// The text values of the information dictionary.
  std::map<std::string, std::string, std::less<>> information;
  std::optional<std::string> identifier;
};

/// Bundles in memory. Set their content before the program uses them: any thread may read it.
class Bundles final : public platform::Bundles {
 public:
  explicit Bundles(World& world);
  ~Bundles() override;

  /// The program's bundle; initially keyvora 1.2 (42).
  BundleContents mainBundle;

  /// The bundle that contains the code; initially with the same directories as the main one.
  BundleContents containingBundle;

  /// The bundles that can be opened, by directory; initially the one with the default mapping document,
  /// among the main bundle's resources.
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
