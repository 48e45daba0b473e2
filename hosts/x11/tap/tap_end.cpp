#include "hosts/x11/tap/tap_end.h"

#include <utility>

namespace keyvora::x11 {

using platform::KeyEvent;
using platform::Verdict;

void TapEnd::introduce(bool ready) {
  say({.kind = ready ? TapRecord::Kind::ready : TapRecord::Kind::refused, .number = recordsVersion});
}

void TapEnd::tell(const KeyEvent& event, Clock::time_point now) {
  hand(TapRecord::Kind::told, event, now);
}

void TapEnd::ask(const KeyEvent& event, Clock::time_point now, unsigned long window) {
  hand(TapRecord::Kind::asked, event, now, window);
  asked_ = lastNumber_;
  verdict_.reset();
}

std::optional<Verdict> TapEnd::takeVerdict() {
  return std::exchange(verdict_, std::nullopt);
}

void TapEnd::released() {
  const auto number = std::exchange(asked_, 0);
  if (number != 0 && toSettle_ == number) say({.kind = TapRecord::Kind::released, .number = number});
}

void TapEnd::enabled() {
  givenUp_ = false;
  say({.kind = TapRecord::Kind::enabled});
}

std::optional<OwnerRecord> TapEnd::next() {
  sendUnsent();
  while (const auto record = socket_.receive()) {
    switch (record->kind) {
      case OwnerRecord::Kind::verdict:
        dealtWith(record->number);
        if (record->number == asked_) verdict_ = record->verdict;
        break;
      case OwnerRecord::Kind::handled:
        dealtWith(record->number);
        break;
      case OwnerRecord::Kind::settle:
        toSettle_ = record->number;
        if (asked_ != toSettle_) say({.kind = TapRecord::Kind::released, .number = toSettle_});
        break;
      case OwnerRecord::Kind::enable:
      case OwnerRecord::Kind::inject:
        return record;
    }
  }
  return std::nullopt;
}

std::optional<TapEnd::Clock::time_point> TapEnd::deadline() const {
  if (overdue_) return Clock::time_point::min();
  if (owed_.empty()) return std::nullopt;
  return owed_.front().since + verdictLimit;
}

bool TapEnd::expire(Clock::time_point now) {
  const auto end = deadline();
  if (!end || now < *end) return false;
  owed_.clear();
  overdue_ = false;
  asked_ = 0;
  verdict_.reset();
  givenUp_ = true;
  unsent_.clear();
  say({.kind = TapRecord::Kind::disabled, .number = lastNumber_});
  return true;
}

void TapEnd::hand(TapRecord::Kind kind, const KeyEvent& event, Clock::time_point now, unsigned long window) {
  if (givenUp_) return;
  ++lastNumber_;
  if (owed_.size() == mostOwed) {
    overdue_ = true;
    return;
  }
  owed_.push_back({lastNumber_, now});
  say({.kind = kind,
       .number = lastNumber_,
       .since = std::chrono::nanoseconds(now.time_since_epoch()).count(),
       .window = window,
       .event = event});
}

void TapEnd::dealtWith(std::uint64_t number) {
  while (!owed_.empty() && owed_.front().number <= number) owed_.pop_front();
}

void TapEnd::say(const TapRecord& record) {
  unsent_.push_back(record);
  sendUnsent();
}

void TapEnd::sendUnsent() {
  while (!unsent_.empty() && socket_.send(unsent_.front())) unsent_.pop_front();
}

}  // namespace keyvora::x11
