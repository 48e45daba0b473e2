#include "app/process_entry.h"

#include <algorithm>

#include "app/keyvora.h"
#include "log/log.h"
#include "platform/host.h"
#include "platform/platform.h"
#include "system/updater.h"

namespace keyvora {
namespace {

bool asksForUpdates(std::span<const std::string_view> arguments) {
  return std::ranges::find(arguments, "--probe-updates") != arguments.end();
}

}  // namespace

std::optional<int> refuseStart(platform::Host& host, std::span<const std::string_view> arguments) {
  if (asksForUpdates(arguments) || host.becomeOnlyInstance()) return std::nullopt;
  Log::line("another keyvora is running");
  return secondInstanceStatus;
}

int processEntry(std::span<const std::string_view> arguments) {
  auto& app = platform::current().application;
  const auto delegate = Keyvora::create();  // its only owner, until the loop returns
  app.setDelegate([weak = std::weak_ptr(delegate)] {
    if (const auto keyvora = weak.lock()) keyvora->applicationDidFinishLaunching();
  });
  app.setActivationPolicy(platform::ActivationPolicy::accessory);
  if (asksForUpdates(arguments)) Updater::shared().probe();
  return app.run();
}

}  // namespace keyvora
