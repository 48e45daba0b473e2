#include "hosts/x11/child_end.h"

#include <glib-unix.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/ending_signals.h"

namespace keyvora::x11 {
namespace {

/// How long a child may take to end after SIGTERM.
constexpr std::chrono::milliseconds graceLimit{300};

struct SourceEnd {
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};
using Source = std::unique_ptr<GSource, SourceEnd>;

struct ContextUnref {
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

int statusOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

/// A program that ignores SIGCHLD passes that on to the programs that it starts, and those would not be told
/// how their children ended. Leaves a handler of GLib's in place.
void stopIgnoringChildren() {
  struct sigaction action {};
  if (sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
    std::signal(SIGCHLD, SIG_DFL);
  }
}

}  // namespace

/// Uses a context of its own, so that the main loop does not run meanwhile. GLib reports a signal to every
/// source for it, so the main loop's source gets it too when the loop runs again.
struct ChildEnd::Wait {
  Wait() : context(g_main_context_new()) {}

  /// Sets `flag` when the source is ready.
  void add(const Source& source, bool& flag) {
    const auto set = +[](gpointer to) -> gboolean {
      *static_cast<bool*>(to) = true;
      return G_SOURCE_CONTINUE;
    };
    g_source_set_callback(source.get(), set, &flag, nullptr);
    g_source_attach(source.get(), context.get());
  }

  /// Until the child has ended, the limit is over, or, if `heedsSignals`, a signal came.
  void run(int child, std::chrono::milliseconds limit, bool heedsSignals) {
    const Source timeout(g_timeout_source_new(guint(limit.count())));
    const Source readable(g_unix_fd_source_new(child, G_IO_IN));
    isOver = false;
    add(timeout, isOver);
    const auto set = +[](gint, GIOCondition, gpointer to) -> gboolean {
      *static_cast<bool*>(to) = true;
      return G_SOURCE_CONTINUE;
    };
    g_source_set_callback(readable.get(), G_SOURCE_FUNC(set), &hasEnded, nullptr);
    g_source_attach(readable.get(), context.get());
    while (!hasEnded && !isOver && !(heedsSignals && isToEnd)) g_main_context_iteration(context.get(), TRUE);
  }

  std::unique_ptr<GMainContext, ContextUnref> context;
  bool isOver = false;
  bool hasEnded = false;
  bool isToEnd = false;
  Source terminate{g_unix_signal_source_new(SIGTERM)};
  Source interrupt{g_unix_signal_source_new(SIGINT)};
  Source hangUp{g_unix_signal_source_new(SIGHUP)};
};

ChildEnd::ChildEnd() : wait_(std::make_unique<Wait>()) {
  stopIgnoringChildren();
  for (const auto* source : {&wait_->terminate, &wait_->interrupt, &wait_->hangUp}) {
    wait_->add(*source, wait_->isToEnd);
  }
  // An earlier signal was only reported to the sources that existed then.
  if (auto* run = EndingSignals::ofRun()) wait_->isToEnd = run->came();
}

ChildEnd::~ChildEnd() = default;

std::optional<int> ChildEnd::await(pid_t child, std::chrono::milliseconds limit) {
  // The C library declares its own function for C only.
  const posix::FileDescriptor file(int(syscall(SYS_pidfd_open, child, 0)));
  if (!file.isOpen()) return statusOf(child);
  wait_->run(file.number(), limit, true);
  if (wait_->hasEnded) return statusOf(child);
  const bool wasTooSlow = !wait_->isToEnd;
  kill(-child, SIGTERM);
  wait_->run(file.number(), graceLimit, false);
  kill(-child, SIGKILL);
  const int status = statusOf(child);
  return wasTooSlow ? std::nullopt : std::optional(status);
}

}  // namespace keyvora::x11
