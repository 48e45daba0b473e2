#pragma once

#include "hosts/posix/clock.h"
#include "hosts/posix/console.h"
#include "hosts/x11/accessibility/accessibility.h"
#include "hosts/x11/application.h"
#include "hosts/x11/applications/applications.h"
#include "hosts/x11/applications/bundles.h"
#include "hosts/x11/applications/target_window.h"
#include "hosts/x11/diagnosis/diagnosis.h"
#include "hosts/x11/files/file_system.h"
#include "hosts/x11/instance.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/keyboard.h"
#include "hosts/x11/login_service.h"
#include "hosts/x11/loop/main_loop.h"
#include "hosts/x11/notices.h"
#include "hosts/x11/process.h"
#include "hosts/x11/queues.h"
#include "hosts/x11/scripts.h"
#include "hosts/x11/status/status_bar.h"
#include "hosts/x11/updates/updates.h"
#include "hosts/x11/workspace.h"
#include "platform/host.h"

namespace keyvora::x11 {

/// The host for an X session.
class Host final : public platform::Host {
 public:
  Host();
  ~Host() override;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  [[nodiscard]] const platform::Platform& platform() const override { return platform_; }

  bool becomeOnlyInstance() override;

 private:
  /// The first member: its initialiser makes Xlib ready, which the others need.
  bool hasDisplay_;
  posix::Clock clock_;
  posix::Console console_;
  Notices notices_;
  MainLoop mainLoop_;
  Process process_;
  Bundles bundles_;
  FileSystem fileSystem_;
  CurrentTap currentTap_;
  TargetWindow targetWindow_;
  Applications applications_;
  Accessibility accessibility_;
  Diagnosis diagnosis_;
  Keyboard keyboard_;
  LoginService loginService_;
  Scripts scripts_;
  StatusBar statusBar_;
  Workspace workspace_;
  Updates updates_;
  Application application_;
  /// The last member: its threads end before the objects that their work uses.
  Queues queues_;
  std::unique_ptr<Instance> instance_;
  platform::Platform platform_;
};

}  // namespace keyvora::x11
