#include "app/process_entry.h"

#include <algorithm>

#include "app/keyvora.h"
#include "platform/platform.h"
#include "system/updater.h"

namespace keyvora {

int processEntry(std::span<const std::string_view> arguments) {
  auto& app = platform::current().application;
  const auto delegate = Keyvora::create();  // its only owner, until the loop returns
  app.setDelegate([weak = std::weak_ptr(delegate)] {
    if (const auto keyvora = weak.lock()) keyvora->applicationDidFinishLaunching();
  });
  app.setActivationPolicy(platform::ActivationPolicy::accessory);
  if (std::ranges::find(arguments, "--probe-updates") != arguments.end()) Updater::shared().probe();
  return app.run();
}

}  // namespace keyvora
