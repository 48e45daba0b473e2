#import "platform/host.h"

#include "platform/macos/accessibility.h"
#include "platform/macos/application.h"
#include "platform/macos/applications.h"
#include "platform/macos/bundles.h"
#include "platform/macos/clock.h"
#include "platform/macos/console.h"
#include "platform/macos/file_system.h"
#include "platform/macos/keyboard.h"
#include "platform/macos/login_service.h"
#include "platform/macos/main_loop.h"
#include "platform/macos/process.h"
#include "platform/macos/queues.h"
#include "platform/macos/scripts.h"
#include "platform/macos/status_bar.h"
#include "platform/macos/updates.h"

namespace keyvora::macos {
namespace {

/// macOS behind the door.
class Host final : public platform::Host {
 public:
  [[nodiscard]] const platform::Platform& platform() const override { return platform_; }

 private:
  Accessibility accessibility_;
  Application application_;
  Applications applications_;
  Bundles bundles_;
  Clock clock_;
  Console console_;
  FileSystem fileSystem_;
  Keyboard keyboard_;
  LoginService loginService_;
  MainLoop mainLoop_;
  Process process_;
  Queues queues_;
  Scripts scripts_;
  StatusBar statusBar_;
  Updates updates_;
  Workspace workspace_;
  platform::Platform platform_{accessibility_, application_, applications_, bundles_,  clock_,   console_,
                               fileSystem_,    keyboard_,    loginService_, mainLoop_, process_, queues_,
                               scripts_,       statusBar_,   updates_,      workspace_};
};

}  // namespace
}  // namespace keyvora::macos

namespace keyvora::platform {

std::unique_ptr<Host> createHost() {
  @autoreleasepool {
    return std::make_unique<macos::Host>();
  }
}

}  // namespace keyvora::platform
