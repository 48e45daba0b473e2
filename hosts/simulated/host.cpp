#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

/// Ships with the program on a real system; here just enough to be loaded.
constexpr const char* defaultDocument = R"({"version": 1, "tabs": {}, "sequences": []})";

}  // namespace

Host::Host()
    : platform_{.accessibility = accessibility,
                .application = application,
                .applications = applications,
                .bundles = bundles,
                .clock = clock,
                .console = console,
                .diagnosis = diagnosis,
                .fileSystem = files,
                .keyboard = keyboard,
                .loginService = loginService,
                .mainLoop = mainLoop,
                .process = process,
                .queues = queues,
                .scripts = scripts,
                .statusBar = statusBar,
                .updates = updates,
                .workspace = workspace} {
  for (const auto& [directory, bundle] : bundles.others) {
    for (const auto& [name, path] : bundle.resources) files.write(path, defaultDocument);
  }
}

}  // namespace keyvora::simulated
