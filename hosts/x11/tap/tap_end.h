#pragma once

#include <poll.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "hosts/x11/tap/record_socket.h"
#include "hosts/x11/tap/records.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// How many events may wait for the owner's answer; an owner further behind cannot catch up in time.
inline constexpr std::size_t mostOwed = 256;

/// The tap's end of the socket pair: sends events to the owner, in order, and receives verdicts. At most
/// one event at a time waits for a verdict, and the server keeps the keyboard frozen until then. Sending
/// never blocks: records for which the socket has no room (in some kernels from the eleventh on) are kept
/// here and sent later. When the owner has not handled an event within `verdictLimit`, that event and all
/// others are void until the tap is enabled again.
class TapEnd {
 public:
  using Clock = std::chrono::steady_clock;

  explicit TapEnd(posix::FileDescriptor socket) : socket_(std::move(socket)) {}

  /// Sends `ready` or `refused`, the first record.
  void introduce(bool ready);

  /// Sends an event that reaches its window whatever the verdict.
  void tell(const platform::KeyEvent& event, Clock::time_point now);

  /// Sends the event that the keyboard is frozen for; `window` is the window that it is meant for.
  void ask(const platform::KeyEvent& event, Clock::time_point now, unsigned long window = 0);

  /// The verdict on the event sent by `ask`, once it has come. Acknowledge it with `released`.
  std::optional<platform::Verdict> takeVerdict();

  /// The server has thawed the keyboard.
  void released();

  /// The tap is enabled again.
  void enabled();

  /// The owner's next request, enabling or an injection; none when there is none.
  std::optional<OwnerRecord> next();

  /// When the owner's time is up; none when no event waits for it.
  [[nodiscard]] std::optional<Clock::time_point> deadline() const;

  /// Gives up an owner that has exceeded its time: true when it had, and then no event waits any more.
  bool expire(Clock::time_point now);

  /// Whether the owner has closed its end.
  [[nodiscard]] bool ended() const { return socket_.ended(); }

  /// The file and the events for `poll`.
  [[nodiscard]] int fileDescriptor() const { return socket_.fileDescriptor(); }
  [[nodiscard]] short awaited() const { return unsent_.empty() ? POLLIN : POLLIN | POLLOUT; }

 private:
  struct Owed {
    std::uint64_t number;
    Clock::time_point since;
  };

  void hand(TapRecord::Kind kind, const platform::KeyEvent& event, Clock::time_point now,
            unsigned long window = 0);
  void dealtWith(std::uint64_t number);
  void say(const TapRecord& record);
  void sendUnsent();

  RecordSocket<OwnerRecord, TapRecord> socket_;
  std::uint64_t lastNumber_ = 0;
  /// The oldest first.
  std::deque<Owed> owed_;
  bool overdue_ = false;
  /// The event sent by `ask`, until the keyboard was thawed; 0 for none.
  std::uint64_t asked_ = 0;
  std::optional<platform::Verdict> verdict_;
  /// The event for which the owner waits for `released`; 0 for none.
  std::uint64_t toSettle_ = 0;
  bool givenUp_ = false;
  /// The oldest first.
  std::deque<TapRecord> unsent_;
};

}  // namespace keyvora::x11
