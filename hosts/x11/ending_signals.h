#pragma once

#include <glib.h>

#include <memory>

namespace keyvora::x11 {

/// Notices the signals that end the program (SIGTERM, SIGINT, SIGHUP) even while the main loop does not
/// run. Every object of this class notices every signal. Main thread.
class EndingSignals {
 public:
  EndingSignals();
  ~EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

  /// Whether a signal came since construction. Never blocks.
  [[nodiscard]] bool came();

  /// The object of the program's run; null outside a run.
  static EndingSignals* ofRun();

  /// Makes this the object of the run as long as it exists.
  void beginRun();

 private:
  struct ContextUnref {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
  };
  std::unique_ptr<GMainContext, ContextUnref> context_;
  bool came_ = false;
};

}  // namespace keyvora::x11
