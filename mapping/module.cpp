#include "mapping/module.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"

namespace keyvora {
namespace {

struct Module {
  std::unique_ptr<platform::Bundle> bundle;
};

std::unique_ptr<Module> find() {
  auto bundle = openModule(platform::current().bundles);
  if (!bundle) platform::fatal("unable to find bundle named keyvora_keyvora");
  return std::make_unique<Module>(Module{std::move(bundle)});
}

}  // namespace

std::unique_ptr<platform::Bundle> openModule(platform::Bundles& bundles) {
  // Lazily: a directory is only looked up if no earlier one had the bundle.
  const auto openIn = [&bundles](const std::optional<std::filesystem::path>& directory) {
    return directory ? bundles.open(*directory / "keyvora_keyvora.bundle") : nullptr;
  };
  auto bundle = openIn(bundles.main().resourceDirectory());
  if (!bundle) bundle = openIn(bundles.containing().resourceDirectory());
  if (!bundle) bundle = openIn(bundles.main().directory());
  return bundle;
}

const platform::Bundle& module() {
  return *platform::shared<Module>(find).bundle;
}

}  // namespace keyvora
