#include "hosts/x11/scripts.h"

#include <fcntl.h>
#include <glib.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/child_end.h"
#include "hosts/x11/gobject.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "text/utf8.h"

namespace keyvora::x11 {
namespace {

using platform::ScriptOutcome;

constexpr auto program = "osascript";

/// The part of the program's message that is kept; a log line needs no more.
constexpr std::size_t longestMessage = 4096;

ScriptOutcome failure(std::string message) {
  return {false, std::move(message)};
}

/// A file in memory. Used instead of pipes for the program's input and messages: nothing has to read or
/// write meanwhile, and processes left running by the script cannot keep it open.
posix::FileDescriptor memoryFile(const char* name) {
  return posix::FileDescriptor(memfd_create(name, MFD_CLOEXEC));
}

bool fill(const posix::FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = write(file.number(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return lseek(file.number(), 0, SEEK_SET) == 0;
}

/// The text at the start of the file, without trailing white space; none when it is empty.
std::optional<std::string> messageIn(const posix::FileDescriptor& file) {
  std::array<char, longestMessage> bytes{};
  const auto size = pread(file.number(), bytes.data(), bytes.size(), 0);
  if (size <= 0) return std::nullopt;
  auto message = text::validText({bytes.data(), static_cast<std::size_t>(size)});
  message.erase(message.find_last_not_of(" \t\r\n\v\f") + 1);
  if (message.empty()) return std::nullopt;
  return message;
}

/// Settings for starting a program: these files and no others, and the default signal state.
class Spawning {
 public:
  Spawning(const posix::FileDescriptor& input, const posix::FileDescriptor& errors) {
    posix_spawn_file_actions_init(&files_);
    posix_spawn_file_actions_adddup2(&files_, input.number(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files_, errors.number(), STDERR_FILENO);
    posix_spawn_file_actions_addopen(&files_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);

    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigaddset(&signals, SIGPIPE);  // ignored in this process
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~Spawning() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&files_);
  }
  Spawning(const Spawning&) = delete;
  Spawning& operator=(const Spawning&) = delete;

  /// 0, or an errno value.
  int start(pid_t& process, KeyboardIsFree) const {
    const std::string name = program;
    std::array<char*, 2> arguments{const_cast<char*>(name.c_str()), nullptr};
    return posix_spawnp(&process, program, &files_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

ScriptOutcome Scripts::run(const std::string& source) {
  const auto input = memoryFile("script");
  const auto errors = memoryFile("script messages");
  if (!input.isOpen() || !errors.isOpen() || !fill(input, source)) {
    return failure("the script cannot be handed to osascript: " + std::string(std::strerror(errno)));
  }
  ChildEnd end;
  pid_t process = 0;
  if (const int error = Spawning(input, errors).start(process, tap_.letGo()); error == ENOENT) {
    return failure("there is no program named osascript on PATH to run AppleScript with");
  } else if (error != 0) {
    return failure("osascript cannot be started: " + std::string(std::strerror(error)));
  }
  const auto ended = end.await(process, limit_);
  if (!ended) return failure("osascript did not end within " + std::to_string(limit_.count()) + " s");
  const int status = *ended;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return {true, std::nullopt};
  auto message = messageIn(errors);
  if (!message && WIFSIGNALED(status)) {
    message = "osascript was ended by signal " + std::to_string(WTERMSIG(status));
  }
  return {false, std::move(message)};
}

}  // namespace keyvora::x11
