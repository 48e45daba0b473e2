#include "hosts/x11/display.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <string_view>
#include <utility>

namespace keyvora::x11 {
namespace {

thread_local ErrorTrap* innermostTrap = nullptr;

struct LossHandler {
  std::mutex mutex;
  std::function<void()> run;
};

/// Never destroyed: a display can be lost during the exit.
LossHandler& lossHandler() {
  static auto& kept = *new LossHandler;
  return kept;
}

[[noreturn]] int displayLost(Display* /*display*/) {
  endForDisplayLoss();
}

}  // namespace

int recordError(Display* display, XErrorEvent* error) {
  for (ErrorTrap* trap = innermostTrap; trap != nullptr; trap = trap->outer_) {
    if (trap->display_ != display) continue;
    if (trap->code_ == 0) trap->code_ = error->error_code;
    break;
  }
  return 0;
}

std::unique_ptr<Connection> Connection::open(const std::string& displayName) {
  installErrorHandlers();
  Display* display = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str());
  if (display == nullptr) return nullptr;
  return std::unique_ptr<Connection>(new Connection(display));
}

Connection::~Connection() {
  XCloseDisplay(display_);
}

ErrorTrap::ErrorTrap(Display* display) : display_(display), outer_(innermostTrap) {
  XSync(display_, False);  // errors of earlier requests do not belong to this trap
  innermostTrap = this;
}

ErrorTrap::~ErrorTrap() {
  XSync(display_, False);
  innermostTrap = outer_;
}

int ErrorTrap::code() {
  XSync(display_, False);
  return code_;
}

void installErrorHandlers() {
  static std::once_flag threads;
  std::call_once(threads, [] { XInitThreads(); });
  XSetErrorHandler(recordError);
  XSetIOErrorHandler(displayLost);
}

void setDisplayLossHandler(std::function<void()> handler) {
  auto& kept = lossHandler();
  const std::scoped_lock lock(kept.mutex);
  kept.run = std::move(handler);
}

void endForDisplayLoss() {
  static std::atomic_flag ending = ATOMIC_FLAG_INIT;
  // Every connection breaks at the same time: the first thread to notice ends the process, the others wait.
  while (ending.test_and_set()) pause();

  constexpr std::string_view message = "keyvora: The X display is gone, and keyvora ends with it.\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, message.data(), message.size());
  auto& kept = lossHandler();
  std::function<void()> run;
  {
    const std::scoped_lock lock(kept.mutex);
    run = std::move(kept.run);
  }
  if (run) run();
  _exit(1);
}

std::optional<std::string> displayProblem(const std::string& displayName) {
  const std::string name = XDisplayName(displayName.c_str());
  if (name.empty()) return "There is no X display: DISPLAY is not set.";
  const auto connection = Connection::open(displayName);
  if (!connection) return "The X display " + name + " cannot be opened.";
  Display* display = connection->get();
  if (!xinputOpcode(display)) return "The X display " + name + " has no XInput 2.2.";

  int unused = 0;
  if (!XTestQueryExtension(display, &unused, &unused, &unused, &unused)) {
    return "The X display " + name + " has no XTEST extension.";
  }
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  if (!XkbQueryExtension(display, &unused, &unused, &unused, &major, &minor)) {
    return "The X display " + name + " has no XKB extension.";
  }
  return std::nullopt;
}

std::optional<int> xinputOpcode(Display* display) {
  int opcode = 0;
  int unused = 0;
  if (!XQueryExtension(display, "XInputExtension", &opcode, &unused, &unused)) return std::nullopt;
  int major = 2;
  int minor = 2;
  if (XIQueryVersion(display, &major, &minor) != Success) return std::nullopt;
  if (major < 2 || (major == 2 && minor < 2)) return std::nullopt;
  return opcode;
}

}  // namespace keyvora::x11
