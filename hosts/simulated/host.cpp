#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

/// On a real system this ships with the program; here it is the smallest document that loads.
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
