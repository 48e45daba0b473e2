#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <iterator>

namespace keyvora::x11 {

/// The data of an event that this program injected; the server does not carry it. All zero for other
/// events.
struct OwnMark {
  std::int64_t userData = 0;
  std::uint64_t flags = 0;

  friend bool operator==(const OwnMark&, const OwnMark&) = default;
};

/// A press or release of a key on one device. The server copies it to the master keyboard with the same
/// time, possibly later if the keyboard was frozen in between.
struct RawKey {
  unsigned keycode = 0;
  bool down = false;
  /// The server's time in milliseconds.
  unsigned long time = 0;

  friend bool operator==(const RawKey&, const RawKey&) = default;
};

/// Distinguishes key events that this connection injected from those of other clients. All clients share
/// one XTEST keyboard, so the device is not enough. The serial number is: an event that the server makes
/// while it processes a request of this connection has that request's number. Such an event appears first
/// as a raw event of the device, at once, and again as one of the master keyboard, in the same order.
class OwnEvents {
 public:
  /// The next request, with this serial number, injects a key event with this mark.
  void expect(unsigned long serial, OwnMark mark) { expected_.push_back({serial, mark}); }

  /// The server has processed all requests before this one. An injected press of a key that was already
  /// down made no event.
  void reached(unsigned long serial) {
    while (!expected_.empty() && expected_.front().serial < serial) expected_.pop_front();
  }

  /// A raw event of XTEST's keyboard device.
  void onDevice(unsigned long serial, const RawKey& key) {
    reached(serial);
    OwnMark mark;
    if (!expected_.empty() && expected_.front().serial == serial) {
      mark = expected_.front().mark;
      expected_.pop_front();  // of several events with this number, only the first was made by the request
    }
    onTheirWay_.push_back({key, mark});
  }

  /// A raw event of the master keyboard whose source is XTEST's device.
  OwnMark onMaster(const RawKey& key) {
    const auto found = std::ranges::find(onTheirWay_, key, &OnItsWay::key);
    if (found == onTheirWay_.end()) return {};  // made before raw events were selected
    const auto mark = found->mark;
    onTheirWay_.erase(onTheirWay_.begin(), std::next(found));
    return mark;
  }

  /// Whether an injected event is still expected.
  [[nodiscard]] bool areOutstanding() const {
    const auto isOurs = [](const OnItsWay& event) { return event.mark != OwnMark{}; };
    return !expected_.empty() || std::ranges::any_of(onTheirWay_, isOurs);
  }

  /// Drops the events of other clients.
  void clear() { onTheirWay_.clear(); }

 private:
  struct Expected {
    unsigned long serial;
    OwnMark mark;
  };

  struct OnItsWay {
    RawKey key;
    OwnMark mark;
  };

  std::deque<Expected> expected_;
  std::deque<OnItsWay> onTheirWay_;
};

}  // namespace keyvora::x11
