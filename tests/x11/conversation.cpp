#include "tests/x11/conversation.h"

#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tests/x11/private_display.h"

namespace keyvora::x11 {

Conversation::Conversation(const std::vector<std::string>& command)
    : errors_(memfd_create("standard error", MFD_CLOEXEC)) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const auto& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  int toChild[2];
  int fromChild[2];
  if (pipe2(toChild, O_CLOEXEC) != 0 || pipe2(fromChild, O_CLOEXEC) != 0)
    throw std::runtime_error("no pipes");
  pid_ = fork();
  if (pid_ == 0) {
    dup2(toChild[0], STDIN_FILENO);
    dup2(fromChild[1], STDOUT_FILENO);
    dup2(errors_.number(), STDERR_FILENO);
    setenv("G_SLICE", "always-malloc", 0);  // else GLib's own allocator hides leaks of its values
    execvp(words[0], words.data());
    _exit(127);
  }
  close(toChild[0]);
  close(fromChild[1]);
  input_ = posix::FileDescriptor(toChild[1]);
  output_ = posix::FileDescriptor(fromChild[0]);
  if (!hears("ready")) throw std::runtime_error(command.front() + " did not start: " + errors());
}

Conversation::~Conversation() {
  if (!hasEnded_) end();
}

int Conversation::end() {
  input_.close();
  hasEnded_ = true;
  int status = 0;
  const bool ended = runUntil([&] { return waitpid(pid_, &status, WNOHANG) != 0; });
  if (!ended) {
    kill(pid_, SIGKILL);
    waitpid(pid_, &status, 0);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void Conversation::say(const std::string& line) {
  const auto text = line + "\n";
  [[maybe_unused]] const auto written = write(input_.number(), text.data(), text.size());
}

bool Conversation::hears(const std::string& line) {
  std::string next;
  while (readLine(next)) {
    if (next == line) return true;
  }
  return false;
}

std::string Conversation::answer() {
  std::string line;
  std::string last;
  while (readLine(line) && line != "ready") last = line;
  return last;
}

std::string Conversation::errors() {
  std::string text(65536, '\0');
  const auto size = pread(errors_.number(), text.data(), text.size(), 0);
  text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  return text;
}

bool Conversation::readLine(std::string& line) {
  const auto limit = static_cast<int>(std::chrono::milliseconds(patience).count());
  std::size_t end = 0;
  while ((end = pending_.find('\n')) == std::string::npos) {
    pollfd source{output_.number(), POLLIN, 0};
    char bytes[4096];
    if (poll(&source, 1, limit) <= 0) return false;
    const auto size = read(output_.number(), bytes, sizeof bytes);
    if (size <= 0) return false;
    pending_.append(bytes, static_cast<std::size_t>(size));
  }
  line = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  heard_.push_back(line);
  return true;
}

}  // namespace keyvora::x11
