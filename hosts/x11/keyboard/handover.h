#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <thread>

#include "hosts/x11/keyboard/verdict_limit.h"
#include "hosts/x11/keyboard/wakeup.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// Takes keyboard events from the tap's thread to the main thread, in order, and verdicts back. At most one
/// event at a time waits for a verdict: the server holds the keyboard until that is there. An event that the
/// main thread has not dealt with in `verdictLimit` is lost, with all that came after it, and the main thread
/// hears of a disabled tap in its place. The lock is held for moments only, never across a call outward; no
/// event allocates.
class Handover {
 public:
  using Clock = std::chrono::steady_clock;

  /// Made on the main thread.
  Handover() = default;

  // The tap's thread.

  /// Hands over an event that goes its way whatever the verdict.
  void tell(const platform::KeyEvent& event, Clock::time_point now);

  /// Hands over the event that the keyboard waits for.
  void ask(const platform::KeyEvent& event, Clock::time_point now);

  /// The verdict on the event asked about, once there is one. Answer it with `released`.
  std::optional<platform::Verdict> verdict();

  /// The server has let the keyboard go.
  void released();

  /// When the main thread will have taken too long; none when it owes nothing.
  std::optional<Clock::time_point> deadline();

  /// Gives up on a main thread that has taken too long: true when it had, and then nothing is owed any more.
  bool expire(Clock::time_point now);

  // The main thread.

  /// The next event to show to the handler; none when all were. Report back with `handled`.
  std::optional<platform::KeyEvent> next();

  /// The handler's verdict on the event that `next` gave; ignored when it comes too late to matter.
  void handled(platform::Verdict verdict);

  // Any thread.

  /// What `CurrentTap::letGo` promises.
  void settle();

  /// Wakes the main thread when an event is there.
  [[nodiscard]] const Wakeup& toMain() const { return toMain_; }

  /// Wakes the tap's thread when a verdict is there.
  [[nodiscard]] const Wakeup& toTap() const { return toTap_; }

 private:
  struct Item {
    platform::KeyEvent event;
    Clock::time_point since;
    bool asked = false;
  };

  /// Where the event asked about is.
  enum class Asked { nothing, waiting, shown, decided };

  void push(const Item& item);
  void decide(platform::Verdict verdict);
  void passUnseen();
  [[nodiscard]] std::optional<Clock::time_point> oldestOwed() const;

  std::mutex mutex_;
  std::condition_variable letGo_;
  std::array<Item, 256> ring_{};
  std::size_t first_ = 0;
  std::size_t count_ = 0;
  std::optional<Item> shown_;
  Asked asked_ = Asked::nothing;
  std::size_t questions_ = 0;
  platform::Verdict verdict_ = platform::Verdict::pass;
  bool overdue_ = false;
  bool disabledToTell_ = false;
  std::thread::id mainThread_ = std::this_thread::get_id();
  Wakeup toMain_;
  Wakeup toTap_;
};

}  // namespace keyvora::x11
