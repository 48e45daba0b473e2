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

/// The owner's end of the socket pair: takes events from the tap to the main thread, in order, and sends
/// verdicts back. Events that the tap has given up are dropped, and the main thread gets a notice of a
/// disabled tap instead. The lock belongs to this process only; it is held briefly, and never during a call
/// out of this class.
class OwnerEnd {
 public:
  using Clock = std::chrono::steady_clock;

  /// Made on the main thread.
  explicit OwnerEnd(posix::FileDescriptor socket) : socket_(std::move(socket)) {}

  // Main thread:

  /// Waits for the tap's first record, which says whether it can work and uses this build's records. False
  /// when none comes in time.
  bool awaitReady(Clock::time_point until);

  /// Tells the tap to grab keys, and waits briefly until it has.
  void enable();

  /// The next event for the handler; none when there is none. Report the verdict with `handled`.
  std::optional<platform::KeyEvent> next(Clock::time_point now);

  /// The window that the event returned by `next` is meant for; 0 for an event that was not held.
  [[nodiscard]] unsigned long window();

  /// The handler's verdict on the event returned by `next`. Not sent if it is too late.
  void handled(platform::Verdict verdict);

  /// Tells the tap to release everything and end, and waits for that; false when it did not end in time.
  bool finish(Clock::time_point until);

  // Any thread:

  /// Does what `CurrentTap::letGo` documents.
  void settle();

  /// Tells the tap to press or release a key, given by its keycode, and to give the event `mark`.
  void inject(std::uint8_t keycode, bool down, const OwnMark& mark);

  /// Whether the tap has ended, or no longer reads from its socket.
  bool ended();

  /// Readable when the tap has sent something. Closed with this object.
  [[nodiscard]] int fileDescriptor() const { return socket_.fileDescriptor(); }

  /// Wakes the main thread when `next` has something that another thread received.
  [[nodiscard]] const Wakeup& toMain() const { return toMain_; }

 private:
  using Lock = std::unique_lock<std::mutex>;

  /// The state of the event that was asked about.
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
  /// The number of the event last asked about, of the one last handled, and of the last one that the tap
  /// knows to be handled.
  std::uint64_t question_ = 0;
  std::uint64_t lastHandled_ = 0;
  std::uint64_t acknowledged_ = 0;
  std::thread::id mainThread_ = std::this_thread::get_id();
  Wakeup toMain_;
};

}  // namespace keyvora::x11
