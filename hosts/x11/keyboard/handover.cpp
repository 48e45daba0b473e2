#include "hosts/x11/keyboard/handover.h"

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {

using platform::KeyEvent;
using platform::Verdict;

void Handover::tell(const KeyEvent& event, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  push({event, now, false});
}

void Handover::ask(const KeyEvent& event, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  asked_ = Asked::waiting;
  ++questions_;
  push({event, now, true});
}

std::optional<Verdict> Handover::verdict() {
  const std::scoped_lock lock(mutex_);
  if (asked_ != Asked::decided) return std::nullopt;
  return verdict_;
}

void Handover::released() {
  const std::scoped_lock lock(mutex_);
  asked_ = Asked::nothing;
  letGo_.notify_all();
}

std::optional<Handover::Clock::time_point> Handover::deadline() {
  const std::scoped_lock lock(mutex_);
  const auto oldest = oldestOwed();
  if (!oldest) return std::nullopt;
  return *oldest + verdictLimit;
}

bool Handover::expire(Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  const auto oldest = oldestOwed();
  if (!oldest || now < *oldest + verdictLimit) return false;
  count_ = 0;
  shown_.reset();
  overdue_ = false;
  asked_ = Asked::nothing;
  letGo_.notify_all();
  disabledToTell_ = true;
  toMain_.signal();
  return true;
}

std::optional<KeyEvent> Handover::next() {
  const std::scoped_lock lock(mutex_);
  if (disabledToTell_) {
    disabledToTell_ = false;
    return KeyEvent{.type = platform::event_type::tapDisabledByTimeout};
  }
  if (count_ == 0) return std::nullopt;
  shown_ = ring_[first_];
  first_ = (first_ + 1) % ring_.size();
  --count_;
  if (shown_->asked) asked_ = Asked::shown;
  return shown_->event;
}

void Handover::handled(Verdict verdict) {
  const std::scoped_lock lock(mutex_);
  if (!shown_) return;
  if (shown_->asked && asked_ == Asked::shown) decide(verdict);
  shown_.reset();
}

void Handover::settle() {
  std::unique_lock lock(mutex_);
  if (asked_ == Asked::nothing) return;
  if (std::this_thread::get_id() == mainThread_) {
    // A key typed since the one being decided waits for its turn: it may begin the next sequence.
    if (asked_ == Asked::waiting && shown_) return;
    if (asked_ == Asked::shown) decide(Verdict::swallow);
    if (asked_ == Asked::waiting) passUnseen();
  }
  const auto question = questions_;
  letGo_.wait_for(lock, verdictLimit,
                  [this, question] { return asked_ == Asked::nothing || questions_ != question; });
}

void Handover::push(const Item& item) {
  if (count_ == ring_.size()) {
    overdue_ = true;  // a main thread this far behind is not coming back within its time
  } else {
    ring_[(first_ + count_) % ring_.size()] = item;
    ++count_;
  }
  toMain_.signal();
}

void Handover::decide(Verdict verdict) {
  verdict_ = verdict;
  asked_ = Asked::decided;
  toTap_.signal();
}

void Handover::passUnseen() {
  // The event asked about is the last: the keyboard stands still behind it. It is still told of, and a key of
  // the user's as one that could not be held back.
  auto& last = ring_[(first_ + count_ - 1) % ring_.size()];
  last.asked = false;
  if (last.event.userData == 0) last.event.keyCode = key_code::none;
  decide(Verdict::pass);
}

std::optional<Handover::Clock::time_point> Handover::oldestOwed() const {
  if (overdue_) return Clock::time_point::min();
  const bool settled = shown_ && shown_->asked && asked_ != Asked::shown;
  if (shown_ && !settled) return shown_->since;
  if (count_ > 0) return ring_[first_].since;
  return std::nullopt;
}

}  // namespace keyvora::x11
