#import "platform/host.h"

#include "hosts/macos/accessibility.h"
#include "hosts/macos/application.h"
#include "hosts/macos/applications.h"
#include "hosts/macos/bundles.h"
#include "hosts/macos/clock.h"
#include "hosts/macos/console.h"
#include "hosts/macos/diagnosis.h"
#include "hosts/macos/file_system.h"
#include "hosts/macos/keyboard.h"
#include "hosts/macos/login_service.h"
#include "hosts/macos/main_loop.h"
#include "hosts/macos/process.h"
#include "hosts/macos/queues.h"
#include "hosts/macos/scripts.h"
#include "hosts/macos/status_bar.h"
#include "hosts/macos/updates.h"

namespace keyvora::macos {
namespace {

/// The host for macOS.
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
  Diagnosis diagnosis_;
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
  platform::Platform platform_{accessibility_, application_, applications_, bundles_,  clock_,
                               console_,       diagnosis_,   fileSystem_,   keyboard_, loginService_,
                               mainLoop_,      process_,     queues_,       scripts_,  statusBar_,
                               updates_,       workspace_};
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
