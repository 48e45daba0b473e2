#include "platform/platform.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/fatal.h"
#include "platform/shared.h"

namespace keyvora::platform {
namespace {

std::atomic<const Platform*> chosen = nullptr;

/// The destructors of the shared instances, in the order of creation. They do not run when the process ends
/// without leaving its scope: other threads may still be using the instances.
struct Instances {
  std::recursive_mutex mutex;  // making one instance may make another
  std::vector<std::function<void()>> destroyers;
};

Instances& instances() {
  static auto& kept = *new Instances;
  return kept;
}

}  // namespace

const Platform& current() {
  const Platform* platform = chosen.load(std::memory_order_acquire);
  if (platform == nullptr) fatal("no platform was chosen");
  return *platform;
}

Scope::Scope(const Platform& platform) {
  if (chosen.exchange(&platform, std::memory_order_acq_rel) != nullptr) fatal("platform scopes do not nest");
}

Scope::~Scope() {
  auto& kept = instances();
  const std::scoped_lock lock(kept.mutex);
  while (!kept.destroyers.empty()) {
    const auto destroy = std::move(kept.destroyers.back());
    kept.destroyers.pop_back();
    destroy();
  }
  chosen.store(nullptr, std::memory_order_release);
}

namespace detail {

void makeShared(const std::function<bool()>& made, const std::function<std::function<void()>()>& make) {
  auto& kept = instances();
  const std::scoped_lock lock(kept.mutex);
  if (!made()) kept.destroyers.push_back(make());
}

}  // namespace detail

}  // namespace keyvora::platform
