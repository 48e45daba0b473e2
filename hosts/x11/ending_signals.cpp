#include "hosts/x11/ending_signals.h"

#include <glib-unix.h>

#include <csignal>

namespace keyvora::x11 {
namespace {

EndingSignals* current = nullptr;

}  // namespace

EndingSignals::EndingSignals() : context_(g_main_context_new()) {
  const auto note = +[](gpointer came) -> gboolean {
    *static_cast<bool*>(came) = true;
    return G_SOURCE_CONTINUE;
  };
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    GSource* source = g_unix_signal_source_new(number);
    g_source_set_callback(source, note, &came_, nullptr);
    g_source_attach(source, context_.get());
    g_source_unref(source);  // the context holds a reference, and ends it
  }
}

EndingSignals::~EndingSignals() {
  if (current == this) current = nullptr;
}

bool EndingSignals::came() {
  while (g_main_context_iteration(context_.get(), FALSE)) {
  }
  return came_;
}

EndingSignals* EndingSignals::ofRun() {
  return current;
}

void EndingSignals::beginRun() {
  current = this;
}

}  // namespace keyvora::x11
