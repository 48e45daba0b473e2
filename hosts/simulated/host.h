#pragma once

#include "hosts/simulated/accessibility.h"
#include "hosts/simulated/application.h"
#include "hosts/simulated/applications.h"
#include "hosts/simulated/bundles.h"
#include "hosts/simulated/clock.h"
#include "hosts/simulated/console.h"
#include "hosts/simulated/diagnosis.h"
#include "hosts/simulated/file_system.h"
#include "hosts/simulated/keyboard.h"
#include "hosts/simulated/login_service.h"
#include "hosts/simulated/main_loop.h"
#include "hosts/simulated/queues.h"
#include "hosts/simulated/scripts.h"
#include "hosts/simulated/status_bar.h"
#include "hosts/simulated/updates.h"
#include "hosts/simulated/world.h"
#include "platform/host.h"

namespace keyvora::simulated {

/// A whole system in memory, on a virtual clock, for tests, fuzzers, benchmarks and tools. `trace` records
/// what the program did to it; a test sets conditions on the members; any call of the door can be made to
/// fail through `failures`. The thread that constructs it is its main thread.
///
///     simulated::Host host;
///     platform::Scope scope(host.platform());
///     host.applications.front = "com.microsoft.Excel";
///     host.failures.always(simulated::Call::createTap);
///     ...
///     host.advance(2.0);
///     EXPECT_THAT(host.trace.logged(), ElementsAre("..."));
class Host final : public platform::Host, private World {
 public:
  Host();

  using World::failures;
  using World::trace;

  MainLoop mainLoop{*this};
  Clock clock{*this, mainLoop};
  Queues queues{*this, mainLoop};
  Keyboard keyboard{*this, mainLoop};
  Applications applications{*this};
  Workspace workspace{*this};
  Accessibility accessibility{*this, mainLoop};
  Scripts scripts{*this};
  FileSystem files{*this, mainLoop};
  Bundles bundles{*this};
  Console console{*this};
  Diagnosis diagnosis{*this};
  Process process{*this};
  Application application{*this, process};
  StatusBar statusBar{*this};
  LoginService loginService{*this};
  Updates updates{*this, mainLoop};

  /// Whether another process of the program runs.
  bool hasOtherInstance = false;

  bool becomeOnlyInstance() override { return !hasOtherInstance; }

  /// Advances the virtual clock: see `MainLoop::advance`.
  void advance(double seconds) { mainLoop.advance(seconds); }

  [[nodiscard]] const platform::Platform& platform() const override { return platform_; }

 private:
  platform::Platform platform_;
};

}  // namespace keyvora::simulated
