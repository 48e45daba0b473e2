#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/world.h"
#include "platform/applications.h"

namespace keyvora::simulated {

/// The applications of the login session: none unless a test starts one.
class Applications final : public platform::Applications {
 public:
  explicit Applications(World& world) : world_(world) {}

  /// Starts an application. It is listed after those that are running.
  void start(std::string bundleIdentifier, platform::ProcessIdentifier process) {
    running_.push_back({std::move(bundleIdentifier), process});
  }

  void quit(platform::ProcessIdentifier process) {
    std::erase_if(running_, [process](const auto& each) { return each.process == process; });
  }

  /// Bundle identifier of the application in front; none when there is no such application, or it has no
  /// identifier.
  std::optional<std::string> front;

  std::vector<platform::ProcessIdentifier> running(std::string_view bundleIdentifier) override {
    std::vector<platform::ProcessIdentifier> processes;
    if (world_.fails(Call::running)) return processes;
    for (const auto& each : running_) {
      if (each.bundleIdentifier == bundleIdentifier) processes.push_back(each.process);
    }
    return processes;
  }

  std::optional<std::string_view> frontmostBundleIdentifier() override {
    if (world_.fails(Call::frontmost) || !front) return std::nullopt;
    return *front;
  }

 private:
  struct Running {
    std::string bundleIdentifier;
    platform::ProcessIdentifier process;
  };

  World& world_;
  std::vector<Running> running_;
};

/// Records what was opened.
class Workspace final : public platform::Workspace {
 public:
  explicit Workspace(World& world) : world_(world) {}

  void openFile(const std::string& path) override {
    if (!world_.fails(Call::openFile)) world_.trace.add(trace::FileOpened{path});
  }
  void openAddress(const std::string& address) override {
    if (!world_.fails(Call::openAddress)) world_.trace.add(trace::AddressOpened{address});
  }

 private:
  World& world_;
};

}  // namespace keyvora::simulated
