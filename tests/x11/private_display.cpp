#include "tests/x11/private_display.h"

#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

namespace keyvora::x11 {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds pollingStep{1};

bool waitUntil(const std::function<bool()>& condition) {
  const auto end = Clock::now() + patience;
  while (!condition()) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(pollingStep);
  }
  return true;
}

/// The display number that Xvfb writes when it accepts connections.
std::string readDisplayNumber(int fileDescriptor) {
  std::string number;
  char letter = 0;
  pollfd source{fileDescriptor, POLLIN, 0};
  const auto limit = int(std::chrono::milliseconds(patience).count());
  while (poll(&source, 1, limit) > 0 && read(fileDescriptor, &letter, 1) == 1 && letter != '\n')
    number += letter;
  return number;
}

}  // namespace

Child::Child(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  int failed[2];
  if (pipe2(failed, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // so that a test that crashes leaves no process
    for (const auto& setting : environment) putenv(const_cast<char*>(setting.c_str()));
    execvp(arguments[0], arguments.data());
    [[maybe_unused]] const auto written = write(failed[1], "!", 1);
    _exit(127);
  }
  close(failed[1]);
  char letter = 0;
  const bool started = pid_ > 0 && read(failed[0], &letter, 1) == 0;
  close(failed[0]);
  if (!started) throw std::runtime_error(command.front() + " cannot be started: is it installed?");
}

Child::Child(Child&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

Child& Child::operator=(Child&& other) noexcept {
  if (this == &other) return *this;
  kill();
  pid_ = std::exchange(other.pid_, -1);
  return *this;
}

void Child::kill() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  waitpid(std::exchange(pid_, -1), nullptr, 0);
}

int Child::wait() {
  int status = -1;
  const bool ended = waitUntil([&] { return waitpid(pid_, &status, WNOHANG) != 0; });
  if (!ended) return -1;
  pid_ = -1;
  return status;
}

PrivateDisplay::PrivateDisplay() {
  std::string home = (std::filesystem::temp_directory_path() / "keyvora-display-XXXXXX").string();
  if (mkdtemp(home.data()) == nullptr) throw std::runtime_error("no temporary directory");
  home_ = home;
  int number[2];
  if (pipe(number) != 0) throw std::runtime_error("no pipe");
  fcntl(number[0], F_SETFD, FD_CLOEXEC);
  server_ = Child({"Xvfb", "-displayfd", std::to_string(number[1]), "-screen", "0", "800x600x24", "-nolisten",
                   "tcp", "-noreset"},
                  {});
  close(number[1]);
  const auto digits = readDisplayNumber(number[0]);
  close(number[0]);
  if (digits.empty()) throw std::runtime_error("Xvfb did not start");
  name_ = ":" + digits;
  setLayout("us");
  startWindowManager();
}

PrivateDisplay::~PrivateDisplay() {
  windowManager_.kill();
  server_.kill();
  std::error_code ignored;
  std::filesystem::remove_all(home_, ignored);
}

void PrivateDisplay::startWindowManager() {
  // Its properties on the root window come too early: it does not manage windows yet.
  const auto ready = home_ / "window-manager-ready";
  std::filesystem::remove(ready);
  windowManager_ =
      Child({"openbox", "--sm-disable", "--startup", "touch " + ready.string()},
            {"DISPLAY=" + name_, "HOME=" + home_.string(), "XDG_CONFIG_HOME=" + (home_ / "config").string(),
             "XDG_CACHE_HOME=" + (home_ / "cache").string()});
  if (!waitUntil([&] { return std::filesystem::exists(ready); }))
    throw std::runtime_error("openbox did not start");
}

void PrivateDisplay::setLayout(const std::string& layout, const std::string& variant) const {
  Child command({"setxkbmap", "-display", name_, "-layout", layout, "-variant", variant}, {});
  if (command.wait() != 0) throw std::runtime_error("setxkbmap failed for " + layout);
}

bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto end = Clock::now() + limit;
  while (!condition()) {
    if (Clock::now() > end) return false;
    if (g_main_context_iteration(nullptr, FALSE) == FALSE) std::this_thread::sleep_for(pollingStep);
  }
  return true;
}

}  // namespace keyvora::x11
