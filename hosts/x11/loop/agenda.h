#pragma once

#include <glib.h>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace keyvora::x11 {

/// Blocks waiting for their moment on GLib's default main context. Only one runs in each turn of the loop,
/// however many are due, so that a key that came meanwhile is handled before the next block. The thread that
/// constructs it is the main thread.
class Agenda {
 public:
  /// Moments of GLib's monotonic clock, and spans.
  using Microseconds = std::int64_t;

  Agenda();
  ~Agenda();
  Agenda(const Agenda&) = delete;
  Agenda& operator=(const Agenda&) = delete;

  /// Runs `block` once on the main thread when `due` has come. Any thread.
  void add(Microseconds due, std::function<void()> block);

  /// Any thread.
  [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == mainThread_; }

  /// When the first of the blocks is due; none without a block. Any thread.
  std::optional<Microseconds> firstDue();

  /// How many blocks the main thread has added so far. Main thread.
  [[nodiscard]] std::uint64_t additions() const { return additions_; }

 private:
  /// By the moment at which they are due; blocks of the same moment in the order of submission.
  using Blocks = std::multimap<Microseconds, std::function<void()>>;

  /// The moments are told when the loop asks for them. A ready time, set anew for each block, would make the
  /// loop take another turn each time.
  struct Source {
    GSource base;
    Agenda* agenda;
  };

  static Agenda& of(GSource* source);
  static gboolean prepare(GSource* source, gint* milliseconds);
  static gboolean check(GSource* source);
  static gboolean run(GSource* source, GSourceFunc callback, gpointer data);
  static GSourceFuncs functions;

  std::optional<Microseconds> untilFirst(Microseconds now);
  void runFirst();
  Blocks::node_type takeFirst();

  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::uint64_t additions_ = 0;
  std::mutex mutex_;
  Blocks blocks_;
  GSource* source_;
};

}  // namespace keyvora::x11
