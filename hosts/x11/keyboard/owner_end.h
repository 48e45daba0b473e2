#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "hosts/x11/keyboard/key_queue.h"
#include "hosts/x11/keyboard/wakeup.h"
#include "hosts/x11/tap/record_socket.h"
#include "hosts/x11/tap/records.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// The owner's end of the pair: events from the tap to the main thread, in order, and verdicts back. What the
/// tap has given up on is not shown any more, and the main thread hears of a disabled tap in its place. The
/// lock is of this process alone and held for moments only, never across a call outward.
class OwnerEnd {
 public:
  using Clock = std::chrono::steady_clock;

  /// Made on the main thread.
  explicit OwnerEnd(posix::FileDescriptor socket) : socket_(std::move(socket)) {}

  // The main thread.

  /// Waits for the tap's first word: whether it can do its work and speaks this build's records. False when
  /// it says nothing in time.
  bool awaitReady(Clock::time_point until);

  /// Has keys grabbed, and waits until that is done, for a moment at the most.
  void enable();

  /// The next event to show to the handler; none when all were. Report back with `handled`.
  std::optional<platform::KeyEvent> next(Clock::time_point now);

  /// The window that the event which `next` gave is meant for; 0 for one that is on its way already.
  [[nodiscard]] unsigned long window();

  /// The handler's verdict on the event that `next` gave; not sent when it comes too late to matter.
  void handled(platform::Verdict verdict);

  /// Has the tap let go of everything and end, and waits for that; false when it did not in time.
  bool finish(Clock::time_point until);

  // Any thread.

  /// What `CurrentTap::letGo` promises.
  void settle();

  /// Has the tap press or release a key, by the display's number, and know it again by `mark`.
  void inject(std::uint8_t keycode, bool down, const OwnMark& mark);

  /// Whether the tap has ended, or takes nothing any more.
  bool ended();

  /// Readable when the tap has said something. Closed with this object.
  [[nodiscard]] int fileDescriptor() const { return socket_.fileDescriptor(); }

  /// Wakes the main thread when there is something for `next` that was received elsewhere.
  [[nodiscard]] const Wakeup& toMain() const { return toMain_; }

 private:
  using Lock = std::unique_lock<std::mutex>;

  /// Where the event asked about is.
  enum class Asked { nothing, waiting, shown, decided };

  struct Shown {
    std::uint64_t number = 0;
    bool asked = false;
    unsigned long window = 0;
  };

  void receive();
  void receiveElsewhere();
  void take(const TapRecord& record);
  bool await(Lock& lock, Clock::time_point until, const std::function<bool()>& condition);
  void say(const OwnerRecord& record);
  void decide(platform::Verdict verdict);
  void passUnseen();

  std::mutex mutex_;
  RecordSocket<TapRecord, OwnerRecord> socket_;
  KeyQueue queue_;
  std::optional<bool> ready_;
  bool enabled_ = false;
  bool disabledToTell_ = false;
  bool stuck_ = false;
  std::optional<Shown> shown_;
  Asked asked_ = Asked::nothing;
  /// The number of the event last asked about, of that last handled, and up to which the tap knows that they
  /// were.
  std::uint64_t question_ = 0;
  std::uint64_t lastHandled_ = 0;
  std::uint64_t acknowledged_ = 0;
  std::thread::id mainThread_ = std::this_thread::get_id();
  Wakeup toMain_;
};

}  // namespace keyvora::x11
