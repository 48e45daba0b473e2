#include "mapping/module.h"

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"

namespace keyvora {
namespace {

struct Module {
  std::unique_ptr<platform::Bundle> bundle;
};

std::unique_ptr<Module> find() {
  auto& bundles = platform::current().bundles;
  // Lazily: a directory is only looked up if no earlier one had the bundle.
  const auto openIn = [&bundles](const std::optional<std::filesystem::path>& directory) {
    return directory ? bundles.open(*directory / "keyvora_keyvora.bundle") : nullptr;
  };
  auto bundle = openIn(bundles.main().resourceDirectory());
  if (!bundle) bundle = openIn(bundles.containing().resourceDirectory());
  if (!bundle) bundle = openIn(bundles.main().directory());
  if (!bundle) platform::fatal("unable to find bundle named keyvora_keyvora");
  return std::make_unique<Module>(Module{std::move(bundle)});
}

}  // namespace

const platform::Bundle& module() {
  return *platform::shared<Module>(find).bundle;
}

}  // namespace keyvora
