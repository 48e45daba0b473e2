#include "tools/script_compiler.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

#include "runner/runner.h"
#include "tools/file.h"
#include "tools/on_path.h"

extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace keyvora::tools {
namespace {

constexpr const char* program = "osacompile";

/// The first compilation waits until the target has started and loaded its dictionary.
constexpr std::chrono::seconds limit{60};
constexpr std::chrono::milliseconds pollInterval{5};

/// The exit status of a process; none when it did not end in time and was killed.
std::optional<int> await(pid_t process) {
  const auto start = std::chrono::steady_clock::now();
  int status = 0;
  while (true) {
    const auto ended = waitpid(process, &status, WNOHANG);
    if (ended == process) return status;
    if (ended < 0 && errno != EINTR) return std::nullopt;
    if (std::chrono::steady_clock::now() - start > limit) {
      kill(process, SIGKILL);
      waitpid(process, &status, 0);
      return std::nullopt;
    }
    std::this_thread::sleep_for(pollInterval);
  }
}

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  return text;
}

}  // namespace

ScriptCompiler::ScriptCompiler() : folder_(makeTemporaryFolder("keyvora-mappings").value_or("")) {}

ScriptCompiler::~ScriptCompiler() {
  std::error_code ignored;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

bool ScriptCompiler::isThere() {
  return onPath(program);
}

std::optional<std::string> ScriptCompiler::fault(const std::string& script) const {
  if (folder_.empty()) return "it cannot be tried: there is no folder for temporary files";
  const auto source = folder_ / "script.applescript";
  const auto messages = folder_ / "messages";
  const auto result = (folder_ / "script.scpt").string();
  std::ofstream(source, std::ios::binary) << Runner::scriptFor(script);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, source.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  const std::array<const char*, 4> arguments{program, "-o", result.c_str(), nullptr};
  pid_t process = 0;
  const int error =
      posix_spawnp(&process, program, &files, nullptr, const_cast<char**>(arguments.data()), environ);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) return std::string("osacompile cannot be started: ") + std::strerror(error);
  const auto status = await(process);
  if (!status) return "osacompile did not end within " + std::to_string(limit.count()) + " seconds";
  if (WIFEXITED(*status) && WEXITSTATUS(*status) == 0) return std::nullopt;
  const auto message = contentOf(messages);
  return "does not compile: " + (message.empty() ? "osacompile does not say why" : message);
}

}  // namespace keyvora::tools
