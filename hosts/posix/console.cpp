#include "hosts/posix/console.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <string>

namespace keyvora::posix {
namespace {

/// Writing to a pipe without a reader raises SIGPIPE, which would end the process. Blocks it on this thread
/// while the record is written, and consumes it if it was raised.
class NoPipeSignal {
 public:
  NoPipeSignal() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  ~NoPipeSignal() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  NoPipeSignal(const NoPipeSignal&) = delete;
  NoPipeSignal& operator=(const NoPipeSignal&) = delete;

  /// To be called after a write that failed for lack of a reader.
  void consume() const {
    if (sigismember(&before_, SIGPIPE) == 1) return;  // blocked by the caller, who handles it
    sigset_t pending;
    ::sigpending(&pending);
    int signal = 0;
    if (sigismember(&pending, SIGPIPE) == 1) ::sigwait(&pipe_, &signal);
  }

 private:
  sigset_t pipe_{};
  sigset_t before_{};
};

bool hasRoom(int descriptor) {
  pollfd question{descriptor, POLLOUT, 0};
  return ::poll(&question, 1, 0) == 1 && (question.revents & POLLOUT) != 0;
}

}  // namespace

Console::Console(int descriptor) : target_(descriptor), way_(Way::polled) {
  struct stat info {};
  if (::fstat(descriptor, &info) != 0) {
    way_ = Way::none;
  } else if (S_ISREG(info.st_mode)) {
    way_ = Way::file;
  } else if (S_ISSOCK(info.st_mode)) {
    way_ = Way::socket;
  } else {
    // If the name leads to the same open file, or cannot be opened, each write is preceded by a poll.
    const auto name = "/proc/self/fd/" + std::to_string(descriptor);
    reopened_ = FileDescriptor(::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (reopened_.isOpen()) {
      target_ = reopened_.number();
      way_ = Way::reopened;
    }
  }
}

void Console::write(std::string_view record) {
  if (way_ == Way::none) return;
  const NoPipeSignal noSignal;
  if (send(record)) return;
  if (errno == EPIPE) {
    noSignal.consume();
    way_ = Way::none;  // the reader has closed its end
  }
}

bool Console::send(std::string_view record) {
  const Way way = way_;
  if (way == Way::polled) {
    if (!hasRoom(target_)) return true;
    // The poll guarantees room for PIPE_BUF bytes only, and another process may use it before this write.
    record = record.substr(0, PIPE_BUF - 2);
  }
  const bool wasCutOff = isCutOff_.exchange(false);
  char lineBreak = '\n';
  std::array<iovec, 3> parts{{{&lineBreak, wasCutOff ? 1u : 0u},
                              {const_cast<char*>(record.data()), record.size()},
                              {&lineBreak, 1}}};
  const auto size = static_cast<ssize_t>(record.size() + (wasCutOff ? 2 : 1));
  ssize_t written = 0;
  if (way == Way::socket) {
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    written = ::sendmsg(target_, &message, MSG_DONTWAIT);
  } else {
    written = ::writev(target_, parts.data(), static_cast<int>(parts.size()));
  }
  if (written == size) return true;
  if (written > 0 || wasCutOff) isCutOff_ = true;
  return written >= 0;
}

}  // namespace keyvora::posix
