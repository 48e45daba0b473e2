#include "hosts/x11/keyboard/tap_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace keyvora::x11 {
namespace {

using std::chrono::milliseconds;

/// A start takes milliseconds; this allows for a very busy machine.
constexpr milliseconds startLimit{5000};

/// Releasing the grabs takes a round trip to the server.
constexpr milliseconds endLimit{2000};

/// Settings for starting the program: its only files are its end of the socket pair and this process's
/// standard error; it gets a session of its own, so that signals from a terminal do not reach it; and the
/// signals that it will ignore are blocked until it does.
class Spawning {
 public:
  explicit Spawning(const posix::FileDescriptor& socket) {
    posix_spawn_file_actions_init(&files_);
    posix_spawn_file_actions_adddup2(&files_, socket.number(), tapSocket);
    posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files_, tapSocket + 1);

    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) sigaddset(&signals, signal);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
  }
  ~Spawning() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&files_);
  }
  Spawning(const Spawning&) = delete;
  Spawning& operator=(const Spawning&) = delete;

  /// 0, or an errno value.
  int start(pid_t& process, const TapCommand& command) const {
    auto program = command.program.string();
    auto display = command.display;
    std::array<char*, 3> arguments{program.data(), display.data(), nullptr};
    return posix_spawn(&process, program.c_str(), &files_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

std::string sentence(const std::string& what, int error) {
  return what + " (" + std::strerror(error) + "): key sequences do not work.";
}

}  // namespace

std::unique_ptr<TapProcess> TapProcess::start(const TapCommand& command, std::string& problem) {
  problem.clear();
  std::array<int, 2> pair{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data()) != 0) {
    problem = sentence("No sockets for the keyboard's program", errno);
    return nullptr;
  }
  posix::FileDescriptor ours(pair[0]);
  posix::FileDescriptor theirs(pair[1]);
  pid_t process = 0;
  if (const int error = Spawning(theirs).start(process, command); error != 0) {
    problem = sentence("The keyboard's program " + command.program.string() + " cannot be started", error);
    return nullptr;
  }
  theirs.close();
  std::unique_ptr<TapProcess> started(new TapProcess(process, std::move(ours)));
  if (!started->end_->awaitReady(OwnerEnd::Clock::now() + startLimit)) return nullptr;
  return started;
}

TapProcess::TapProcess(pid_t process, posix::FileDescriptor socket)
    : process_(process), end_(std::make_shared<OwnerEnd>(std::move(socket))) {}

TapProcess::~TapProcess() {
  stop();
}

std::string TapProcess::stop() {
  if (process_ <= 0) return "has ended";
  if (!end_->finish(OwnerEnd::Clock::now() + endLimit)) kill(process_, SIGKILL);
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  if (WIFSIGNALED(status)) return "was ended by signal " + std::to_string(WTERMSIG(status));
  return "ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace keyvora::x11
