#pragma once

#include "platform/application.h"

namespace keyvora::macos {

/// The shared NSApplication. Main thread. `run` does not return: the process ends through `terminate`.
class Application final : public platform::Application {
 public:
  Application();

  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void activate() override;
  int run(std::function<void()> didFinishLaunching) override;
  void terminate() override;
};

}  // namespace keyvora::macos
