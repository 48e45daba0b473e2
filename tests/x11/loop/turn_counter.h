#pragma once

#include <glib.h>

namespace keyvora::x11 {

/// Counts the turns of GLib's default main context, from its construction on. Main thread.
class TurnCounter {
 public:
  TurnCounter() : source_(g_source_new(&functions, sizeof(Source))) {
    reinterpret_cast<Source*>(source_)->turns = &turns_;
    g_source_attach(source_, nullptr);
  }
  ~TurnCounter() {
    g_source_destroy(source_);
    g_source_unref(source_);
  }
  TurnCounter(const TurnCounter&) = delete;
  TurnCounter& operator=(const TurnCounter&) = delete;

  [[nodiscard]] int turns() const { return turns_; }

 private:
  struct Source {
    GSource base;
    int* turns;
  };

  /// Each source is asked once in each turn.
  static gboolean prepare(GSource* source, gint* /*milliseconds*/) {
    ++*reinterpret_cast<Source*>(source)->turns;
    return FALSE;
  }

  inline static GSourceFuncs functions{prepare, nullptr, nullptr, nullptr, nullptr, nullptr};

  int turns_ = 0;
  GSource* source_;
};

}  // namespace keyvora::x11
