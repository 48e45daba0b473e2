#pragma once

#include <functional>
#include <utility>

#include "hosts/simulated/world.h"
#include "platform/diagnosis.h"

namespace keyvora::simulated {

/// Returns the findings that a test set.
class Diagnosis final : public platform::Diagnosis {
 public:
  explicit Diagnosis(World& world) : world_(world) {}

  std::vector<platform::Finding> found;
  std::vector<platform::Fact> known;
  /// The document of the last call.
  std::filesystem::path document;
  std::string target;

  /// Whether the desktop has started. When it has not, `startDesktop` runs what waits for it.
  bool desktopIsUp = true;

  void startDesktop() {
    desktopIsUp = true;
    if (const auto block = std::exchange(waiting_, nullptr)) block();
  }

  void whenDesktopIsUp(const std::function<void()>& block) override {
    if (desktopIsUp) return block();
    waiting_ = block;
  }

  std::vector<platform::Finding> findings(const std::filesystem::path& named) override {
    document = named;
    if (world_.fails(Call::findings)) return {};
    return found;
  }

  std::vector<platform::Fact> facts(std::string_view named) override {
    target = named;
    if (world_.fails(Call::facts)) return {};
    return known;
  }

 private:
  World& world_;
  std::function<void()> waiting_;
};

}  // namespace keyvora::simulated
