#include "hosts/x11/keyboard/owner_end.h"

#include <poll.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/key_code.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using std::chrono::milliseconds;

/// For a few round trips to the server, so that keys are caught when `enable` has returned. A machine may be
/// very busy at login, and a window manager that starts may grab the server. No key waits meanwhile.
constexpr milliseconds grabbingLimit{2000};

/// For the tap to read from a full socket. It never works for long.
constexpr milliseconds sendingLimit{250};

/// The longest delay until a wait notices that another thread received what it waits for.
constexpr milliseconds longestPoll{10};

void awaitFile(int file, short what, milliseconds limit) {
  pollfd source{file, what, 0};
  poll(&source, 1, int(std::max(limit, milliseconds(0)).count()));
}

}  // namespace

bool OwnerEnd::awaitReady(Clock::time_point until) {
  Lock lock(mutex_);
  await(lock, until, [this] { return ready_.has_value(); });
  return ready_.value_or(false);
}

void OwnerEnd::enable() {
  Lock lock(mutex_);
  enabled_ = false;
  say({.kind = OwnerRecord::Kind::enable});
  await(lock, Clock::now() + grabbingLimit, [this] { return enabled_; });
}

std::optional<KeyEvent> OwnerEnd::next(Clock::time_point now) {
  const Lock lock(mutex_);
  receive();
  if (std::exchange(disabledToTell_, false)) {
    return KeyEvent{.type = platform::event_type::tapDisabledByTimeout};
  }
  while (const auto record = queue_.take()) {
    const bool asked = record->kind == TapRecord::Kind::asked;
    const Clock::time_point since{std::chrono::nanoseconds(record->since)};
    if (now - since > verdictLimit) {
      // The tap is about to report that it has thawed the keyboard.
      if (asked) asked_ = Asked::nothing;
      continue;
    }
    shown_ = {record->number, asked, record->window};
    if (asked) asked_ = Asked::shown;
    return record->event;
  }
  if (acknowledged_ < lastHandled_) {
    acknowledged_ = lastHandled_;
    say({.kind = OwnerRecord::Kind::handled, .number = lastHandled_});
  }
  return std::nullopt;
}

unsigned long OwnerEnd::window() {
  const Lock lock(mutex_);
  return shown_ ? shown_->window : 0;
}

void OwnerEnd::handled(Verdict verdict) {
  const Lock lock(mutex_);
  if (!shown_) return;
  const auto shown = *std::exchange(shown_, std::nullopt);
  lastHandled_ = shown.number;
  if (shown.asked && asked_ == Asked::shown) decide(verdict);
}

bool OwnerEnd::finish(Clock::time_point until) {
  Lock lock(mutex_);
  socket_.finish();
  return await(lock, until, [this] { return socket_.ended(); });
}

void OwnerEnd::settle() {
  Lock lock(mutex_);
  receiveElsewhere();
  if (asked_ == Asked::nothing) return;
  if (std::this_thread::get_id() == mainThread_) {
    // A key typed after the one being decided stays frozen: it may begin the next sequence.
    if (asked_ == Asked::waiting && shown_) return;
    if (asked_ == Asked::shown) decide(Verdict::swallow);
    if (asked_ == Asked::waiting) passUnseen();
  }
  const auto question = question_;
  say({.kind = OwnerRecord::Kind::settle, .number = question});
  await(lock, Clock::now() + verdictLimit,
        [this, question] { return asked_ == Asked::nothing || question_ != question; });
}

void OwnerEnd::inject(std::uint8_t keycode, bool down, const OwnMark& mark) {
  const Lock lock(mutex_);
  say({.kind = OwnerRecord::Kind::inject, .keycode = keycode, .down = down, .mark = mark});
}

bool OwnerEnd::ended() {
  const Lock lock(mutex_);
  return stuck_ || socket_.ended();
}

void OwnerEnd::receive() {
  while (auto record = socket_.receive()) {
    take(*record);
    explicit_bzero(&*record, sizeof(TapRecord));
  }
  if (socket_.ended()) asked_ = Asked::nothing;
}

/// Receives outside `next`. The socket does not become readable again for these records, so the main thread
/// is woken.
void OwnerEnd::receiveElsewhere() {
  receive();
  if (!queue_.isEmpty() || disabledToTell_ || socket_.ended()) toMain_.signal();
}

void OwnerEnd::take(const TapRecord& record) {
  switch (record.kind) {
    case TapRecord::Kind::ready:
      ready_ = record.number == recordsVersion;
      break;
    case TapRecord::Kind::refused:
      ready_ = false;
      break;
    case TapRecord::Kind::enabled:
      enabled_ = true;
      break;
    case TapRecord::Kind::asked:
      asked_ = Asked::waiting;
      question_ = record.number;
      [[fallthrough]];
    case TapRecord::Kind::told:
      if (!queue_.isFull()) queue_.push(record);
      break;
    case TapRecord::Kind::released:
      if (record.number == question_) asked_ = Asked::nothing;
      break;
    case TapRecord::Kind::disabled:
      // Records are in order, so all in the queue are older.
      queue_.clear();
      shown_.reset();
      asked_ = Asked::nothing;
      disabledToTell_ = true;
      break;
  }
}

/// Receives until the condition is true, the tap has ended or time is up; returns the condition. Releases
/// the lock while it waits.
bool OwnerEnd::await(Lock& lock, Clock::time_point until, const std::function<bool()>& condition) {
  for (;;) {
    receiveElsewhere();
    const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
    if (condition() || socket_.ended() || left <= milliseconds(0)) return condition();
    lock.unlock();
    awaitFile(socket_.fileDescriptor(), POLLIN, std::min(left, longestPoll));
    lock.lock();
  }
}

void OwnerEnd::say(const OwnerRecord& record) {
  if (stuck_ || socket_.send(record)) return;
  awaitFile(socket_.fileDescriptor(), POLLOUT, sendingLimit);
  if (socket_.send(record)) return;
  stuck_ = true;
  toMain_.signal();
}

void OwnerEnd::decide(Verdict verdict) {
  asked_ = Asked::decided;
  acknowledged_ = question_;
  say({.kind = OwnerRecord::Kind::verdict, .number = question_, .verdict = verdict});
}

void OwnerEnd::passUnseen() {
  // The event asked about is the newest, since the keyboard is frozen behind it. The handler still gets it;
  // a key of the user without a code, like one that could not be held.
  auto& last = queue_.last();
  last.kind = TapRecord::Kind::told;
  last.window = 0;
  if (last.event.userData == 0) last.event.keyCode = platform::key_code::none;
  decide(Verdict::pass);
}

}  // namespace keyvora::x11
