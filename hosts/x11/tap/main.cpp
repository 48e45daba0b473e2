// The tap's program: `keyvora-tap [DISPLAY]`, started by keyvora with one end of a socket pair as file 3.

#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>

#include "hosts/x11/tap/tap.h"

namespace keyvora::x11 {
namespace {

/// Ignores the signals of terminals, sessions and users: while keys are grabbed, the program must first
/// release them, and it does that when its owner ends.
void ignoreSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
    std::signal(signal, SIG_IGN);
    sigaddset(&signals, signal);
  }
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Xlib's buffers contain keys too, so core dumps leave out all memory of this process.
void keepOutOfCoreDumps() {
  // Without a stream: what the streams of the standard library need would be most of this program's memory.
  const posix::FileDescriptor filter(open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC));
  [[maybe_unused]] const auto written = write(filter.number(), "0\n", 2);
}

bool isPair(int file) {
  int type = 0;
  socklen_t size = sizeof type;
  return getsockopt(file, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

/// The owner has lost the display too and reports it. It must notice that itself, and not by the end of its
/// tap.
[[noreturn]] int endWithTheDisplay(Display* /*display*/) {
  constexpr int limitMilliseconds = 1000;
  pollfd end{tapSocket, POLLRDHUP, 0};
  poll(&end, 1, limitMilliseconds);
  _exit(1);
}

int run(const char* displayName) {
  TapEnd owner{posix::FileDescriptor(tapSocket)};
  const auto tap = Tap::open(displayName, owner);
  owner.introduce(tap != nullptr);
  if (!tap) return 1;
  XSetIOErrorHandler(endWithTheDisplay);
  tap->run();
  return 0;
}

}  // namespace
}  // namespace keyvora::x11

int main(int argc, char** argv) {
  using namespace keyvora::x11;
  ignoreSignals();
  keepOutOfCoreDumps();
  if (!isPair(tapSocket)) {
    std::fputs("keyvora-tap: This program is a part of keyvora, which starts it.\n", stderr);
    return 2;
  }
  return run(argc > 1 ? argv[1] : "");
}
