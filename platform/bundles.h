#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace keyvora::platform {

/// A directory with a program's or library's resources. Any thread.
class Bundle {
 public:
  virtual ~Bundle() = default;

  /// The bundle's own directory.
  [[nodiscard]] virtual std::filesystem::path directory() const = 0;

  /// Where its resources are; none for a bundle without a resource directory.
  [[nodiscard]] virtual std::optional<std::filesystem::path> resourceDirectory() const = 0;

  /// The file of the resource with this name and extension; none when there is none.
  [[nodiscard]] virtual std::optional<std::filesystem::path> resource(std::string_view name,
                                                                      std::string_view extension) const = 0;

  /// The text under a key of the information dictionary; none when the dictionary or the key is missing, or
  /// the value is not text.
  [[nodiscard]] virtual std::optional<std::string> information(std::string_view key) const = 0;

  /// The bundle's unique reverse-domain name; none when it has none.
  [[nodiscard]] virtual std::optional<std::string> identifier() const = 0;
};

/// Finds bundles. Any thread.
class Bundles {
 public:
  virtual ~Bundles() = default;

  /// The bundle of the running program.
  virtual const Bundle& main() = 0;

  /// The bundle that contains this code. It differs from `main` when the code was linked into a framework.
  virtual const Bundle& containing() = 0;

  /// Opens the directory as a bundle; null when it is not one.
  virtual std::unique_ptr<Bundle> open(const std::filesystem::path& directory) = 0;
};

}  // namespace keyvora::platform
