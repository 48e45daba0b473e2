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

/// How many events the owner may owe; one that is further behind does not come back within its time.
inline constexpr std::size_t mostOwed = 256;

/// The tap's end of the pair: events to the owner, in order, and verdicts back. At most one event at a time
/// waits for a verdict: the server holds the keyboard until that is there. Saying something never waits for
/// the owner: what the socket has no room for (in some kernels that is the eleventh record) is kept here and
/// sent later. An event that the owner has not dealt with in `verdictLimit` is void, with all before and
/// after it until the tap is enabled again.
class TapEnd {
 public:
  using Clock = std::chrono::steady_clock;

  explicit TapEnd(posix::FileDescriptor socket) : socket_(std::move(socket)) {}

  /// Says `ready` or `refused`, as the first word.
  void introduce(bool ready);

  /// Hands over an event that goes its way whatever the verdict.
  void tell(const platform::KeyEvent& event, Clock::time_point now);

  /// Hands over the event that the keyboard waits for; `window` is the one that it is meant for.
  void ask(const platform::KeyEvent& event, Clock::time_point now, unsigned long window = 0);

  /// The verdict on the event asked about, once there is one. Answer it with `released`.
  std::optional<platform::Verdict> takeVerdict();

  /// The server has let the keyboard go.
  void released();

  /// The tap works again.
  void enabled();

  /// What the owner wants done: enabling or an injection; none when it wants nothing now.
  std::optional<OwnerRecord> next();

  /// When the owner will have taken too long; none when it owes nothing.
  [[nodiscard]] std::optional<Clock::time_point> deadline() const;

  /// Gives up on an owner that has taken too long: true when it had, and then nothing is owed any more.
  bool expire(Clock::time_point now);

  /// Whether the owner has closed its end.
  [[nodiscard]] bool ended() const { return socket_.ended(); }

  /// For `poll`: what to wait for on which file.
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
  /// The event asked about, until the keyboard was let go; 0 for none.
  std::uint64_t asked_ = 0;
  std::optional<platform::Verdict> verdict_;
  /// The owner wants to know when this event's key was let go; 0 for none.
  std::uint64_t toSettle_ = 0;
  bool givenUp_ = false;
  /// The oldest first.
  std::deque<TapRecord> unsent_;
};

}  // namespace keyvora::x11
