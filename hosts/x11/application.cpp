#include "hosts/x11/application.h"

#include <glib-unix.h>
#include <gtk/gtk.h>
#include <gtk/gtkx.h>

#include <csignal>
#include <utility>

#include "hosts/x11/display.h"
#include "hosts/x11/ending_signals.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

/// Calls `visit` for each top-level window of keyvora that the user sees as a window.
template <class Visit>
void forEachWindow(Visit visit) {
  if (!isToolkitOpen()) return;
  GList* windows = gtk_window_list_toplevels();
  for (GList* at = windows; at != nullptr; at = at->next) {
    auto* window = GTK_WINDOW(at->data);
    if (gtk_window_get_window_type(window) == GTK_WINDOW_TOPLEVEL && !GTK_IS_PLUG(window)) visit(window);
  }
  g_list_free(windows);
}

/// While it exists, this signal ends the application.
class EndingSignal {
 public:
  EndingSignal(int number, Application& application)
      : source_(g_unix_signal_add(number, terminate, &application)) {}
  ~EndingSignal() { g_source_remove(source_); }
  EndingSignal(const EndingSignal&) = delete;
  EndingSignal& operator=(const EndingSignal&) = delete;

 private:
  static gboolean terminate(gpointer application) {
    static_cast<Application*>(application)->terminate();
    return G_SOURCE_CONTINUE;
  }

  guint source_;
};

}  // namespace

Application::Application(Process& process, Notices& notices, WorkWithoutDisplay worksWithoutDisplay)
    : process_(process),
      notices_(notices),
      worksWithoutDisplay_(std::move(worksWithoutDisplay)),
      loop_(g_main_loop_new(nullptr, FALSE)) {}

Application::~Application() {
  g_main_loop_unref(loop_);
}

void Application::setDelegate(std::function<void()> didFinishLaunching) {
  didFinishLaunching_ = std::move(didFinishLaunching);
}

void Application::setActivationPolicy(platform::ActivationPolicy policy) {
  const gboolean hidden = policy == platform::ActivationPolicy::accessory;
  forEachWindow([hidden](GtkWindow* window) {
    gtk_window_set_skip_taskbar_hint(window, hidden);
    gtk_window_set_skip_pager_hint(window, hidden);
  });
}

void Application::activate() {
  forEachWindow([](GtkWindow* window) {
    if (gtk_widget_get_visible(GTK_WIDGET(window))) gtk_window_present(window);
  });
}

int Application::run() {
  if (!hasDisplay() && !worksWithoutDisplay_()) {
    notices_.say(displayProblem("").value_or("The X display cannot be used.") +
                 " keyvora needs one to see the keyboard, and ends.");
    process_.runExitBlocks();
    return 1;
  }
  EndingSignals signals;  // also seen by a script that starts after the signal came
  signals.beginRun();
  const EndingSignal onTerminate(SIGTERM, *this);
  const EndingSignal onInterrupt(SIGINT, *this);
  const EndingSignal onHangUp(SIGHUP, *this);
  if (didFinishLaunching_)
    didFinishLaunching_();  // first: the answer to a probe may already be waiting on the loop
  if (!terminated_) g_main_loop_run(loop_);
  process_.runExitBlocks();
  return 0;
}

void Application::terminate() {
  terminated_ = true;
  g_main_loop_quit(loop_);
}

}  // namespace keyvora::x11
