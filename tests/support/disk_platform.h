#pragma once

#include "hosts/posix/clock.h"
#include "hosts/posix/queues.h"
#include "hosts/simulated/host.h"
#include "tests/support/scratch_home.h"

namespace keyvora::test {

/// Real files in a scratch home, real threads and the real clock; everything else is simulated.
class DiskPlatform {
 public:
  simulated::Host host;
  ScratchHome home;
  posix::Clock clock;
  posix::Queues queues;

  [[nodiscard]] const platform::Platform& platform() const { return platform_; }

 private:
  platform::Platform platform_{.accessibility = host.accessibility,
                               .application = host.application,
                               .applications = host.applications,
                               .bundles = host.bundles,
                               .clock = clock,
                               .console = host.console,
                               .diagnosis = host.diagnosis,
                               .fileSystem = home,
                               .keyboard = host.keyboard,
                               .loginService = host.loginService,
                               .mainLoop = host.mainLoop,
                               .process = host.process,
                               .queues = queues,
                               .scripts = host.scripts,
                               .statusBar = host.statusBar,
                               .updates = host.updates,
                               .workspace = host.workspace};
};

}  // namespace keyvora::test
