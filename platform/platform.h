#pragma once

#include "platform/accessibility.h"
#include "platform/application.h"
#include "platform/applications.h"
#include "platform/bundles.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "platform/diagnosis.h"
#include "platform/file_system.h"
#include "platform/keyboard.h"
#include "platform/login_service.h"
#include "platform/main_loop.h"
#include "platform/queues.h"
#include "platform/scripts.h"
#include "platform/status_bar.h"
#include "platform/updates.h"

namespace keyvora::platform {

/// The door: everything that the core uses of an operating system.
struct Platform {
  Accessibility& accessibility;
  Application& application;
  Applications& applications;
  Bundles& bundles;
  Clock& clock;
  Console& console;
  Diagnosis& diagnosis;
  FileSystem& fileSystem;
  Keyboard& keyboard;
  LoginService& loginService;
  MainLoop& mainLoop;
  Process& process;
  Queues& queues;
  Scripts& scripts;
  StatusBar& statusBar;
  Updates& updates;
  Workspace& workspace;
};

/// The current host. Fatal when none was chosen. Any thread.
const Platform& current();

/// Selects the host as long as it lives: the process entry makes one, and so does each test. Its destructor
/// destroys the shared instances made in it, the last first. Scopes do not nest.
class Scope {
 public:
  explicit Scope(const Platform& platform);
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
};

}  // namespace keyvora::platform
