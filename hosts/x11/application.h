#pragma once

#include <glib.h>

#include "hosts/x11/notices.h"
#include "hosts/x11/process.h"
#include "platform/application.h"

namespace keyvora::x11 {

/// The program as an application of an X session, on GLib's main loop.
class Application final : public platform::Application {
 public:
  /// Returns whether the program has work that needs no display.
  using WorkWithoutDisplay = std::function<bool()>;

  Application(Process& process, Notices& notices, WorkWithoutDisplay worksWithoutDisplay);
  ~Application() override;
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  void setDelegate(std::function<void()> didFinishLaunching) override;
  /// An accessory's windows are left out of task bars and pagers.
  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void activate() override;

  /// Returns 1 at once, after a notice, when there is neither a display nor work without one. SIGTERM,
  /// SIGINT and SIGHUP end it normally.
  int run() override;
  void terminate() override;

 private:
  Process& process_;
  Notices& notices_;
  WorkWithoutDisplay worksWithoutDisplay_;
  std::function<void()> didFinishLaunching_;
  GMainLoop* loop_;
  bool terminated_ = false;
};

}  // namespace keyvora::x11
