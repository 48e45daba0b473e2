#include "hosts/x11/applications/bundles.h"

namespace keyvora::x11 {
namespace {

bool isDirectory(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

/// The installation prefix with the resources in `share/keyvora`; if nothing is installed, the executable's
/// folder, which contains the resources.
Bundle mainBundle(const std::filesystem::path& executable) {
  const auto folder = executable.parent_path();
  const auto prefix = folder.parent_path();
  const auto resources = prefix / "share" / "keyvora";
  if (isDirectory(resources)) return {prefix, resources};
  return {folder, folder};
}

}  // namespace

Bundles::Bundles(const std::filesystem::path& executable) : main_(mainBundle(executable)) {}

const platform::Bundle& Bundles::main() {
  return main_;
}

const platform::Bundle& Bundles::containing() {
  return main_;
}

std::unique_ptr<platform::Bundle> Bundles::open(const std::filesystem::path& directory) {
  if (!isDirectory(directory)) return nullptr;
  return std::make_unique<Bundle>(directory, directory);
}

}  // namespace keyvora::x11
