#pragma once

#import <AppKit/AppKit.h>

#include "platform/application.h"

namespace keyvora::macos {

/// The shared NSApplication. Main thread. `run` does not return: the process ends through `terminate`.
class Application final : public platform::Application {
 public:
  Application();
  ~Application() override;
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  void setDelegate(std::function<void()> didFinishLaunching) override;
  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void activate() override;
  int run() override;
  void terminate() override;

 private:
  /// NSApplication holds its delegate weakly.
  id<NSApplicationDelegate> delegate_;
};

}  // namespace keyvora::macos
