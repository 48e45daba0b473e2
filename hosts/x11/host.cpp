#include "hosts/x11/host.h"

#include "hosts/x11/display.h"
#include "hosts/x11/files/directories.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {

Host::Host()
    : hasDisplay_(openDisplay()),
      notices_(console_),
      bundles_(executableFile()),
      fileSystem_(mainLoop_.wait()),
      applications_("", targetWindow_),
      accessibility_(notices_, applications_, currentTap_),
      diagnosis_("", applications_, mainLoop_),
      keyboard_("", partOf(executableFile(), "keyvora-tap"), currentTap_, targetWindow_),
      loginService_(executableFile()),
      scripts_(currentTap_),
      statusBar_(mainLoop_),
      workspace_(notices_),
      updates_(bundles_, mainLoop_, workspace_, partOf(executableFile(), "keyvora-fetch")),
      application_(process_, notices_, [this] { return updates_.isBusy(); }),
      queues_(targetWindow_),
      platform_{accessibility_, application_, applications_, bundles_,      clock_,    console_,
                diagnosis_,     fileSystem_,  keyboard_,     loginService_, mainLoop_, process_,
                queues_,        scripts_,     statusBar_,    updates_,      workspace_} {
  setDisplayLossHandler([this] { process_.runExitBlocks(); });
}

Host::~Host() {
  setDisplayLossHandler(nullptr);
}

bool Host::becomeOnlyInstance() {
  // Without a display there is nothing to claim; the missing display is reported elsewhere.
  if (!hasDisplay_) return true;
  instance_ = Instance::claim("", std::chrono::seconds(1));
  return instance_ != nullptr;
}

}  // namespace keyvora::x11

namespace keyvora::platform {

std::unique_ptr<Host> createHost() {
  return std::make_unique<x11::Host>();
}

}  // namespace keyvora::platform
