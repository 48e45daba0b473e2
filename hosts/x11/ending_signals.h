#pragma once

#include <glib.h>

#include <memory>

namespace keyvora::x11 {

/// Hears of the signals that end the program (SIGTERM, SIGINT, SIGHUP) beside the main loop, so that they are
/// known while the loop stands still. Every one alive hears of every signal. Main thread.
class EndingSignals {
 public:
  EndingSignals();
  ~EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

  /// Whether one came since this was made. Never waits.
  [[nodiscard]] bool came();

  /// Those of the program's run; null outside one.
  static EndingSignals* ofRun();

  /// Makes itself those of the run for as long as it lives.
  void beginRun();

 private:
  struct ContextUnref {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
  };
  std::unique_ptr<GMainContext, ContextUnref> context_;
  bool came_ = false;
};

}  // namespace keyvora::x11
