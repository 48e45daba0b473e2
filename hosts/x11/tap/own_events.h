#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <iterator>

namespace keyvora::x11 {

/// What an event that this program injected carries, and the server does not; all zero for others' events.
struct OwnMark {
  std::int64_t userData = 0;
  std::uint64_t flags = 0;

  friend bool operator==(const OwnMark&, const OwnMark&) = default;
};

/// A press or release of a key on one device. The server copies it to the master keyboard with its time, be
/// it later when the keyboard was held back in between.
struct RawKey {
  unsigned keycode = 0;
  bool down = false;
  /// The server's, in milliseconds.
  unsigned long time = 0;

  friend bool operator==(const RawKey&, const RawKey&) = default;
};

/// Tells the key events that this connection injected from those that others did. XTEST has one keyboard
/// device for all clients, so the device alone does not say. What says it is the serial number: an event that
/// the server makes while it carries out our request bears that request's number. Such an event first appears
/// as a raw event of the device, at once, and again as one of the master keyboard, in the same order.
class OwnEvents {
 public:
  /// The next request, of this serial number, injects a key event with this mark.
  void expect(unsigned long serial, OwnMark mark) { expected_.push_back({serial, mark}); }

  /// The server has carried out what came before this request. One for a key that was down already made no
  /// event.
  void reached(unsigned long serial) {
    while (!expected_.empty() && expected_.front().serial < serial) expected_.pop_front();
  }

  /// A raw event of XTEST's keyboard device.
  void onDevice(unsigned long serial, const RawKey& key) {
    reached(serial);
    OwnMark mark;
    if (!expected_.empty() && expected_.front().serial == serial) {
      mark = expected_.front().mark;
      expected_.pop_front();  // of several events with one number only the first was made by the request
    }
    onTheirWay_.push_back({key, mark});
  }

  /// A raw event of the master keyboard that comes from XTEST's device.
  OwnMark onMaster(const RawKey& key) {
    const auto found = std::ranges::find(onTheirWay_, key, &OnItsWay::key);
    if (found == onTheirWay_.end()) return {};  // made before raw events were listened to
    const auto mark = found->mark;
    onTheirWay_.erase(onTheirWay_.begin(), std::next(found));
    return mark;
  }

  /// Whether an event of our own is still to come.
  [[nodiscard]] bool areOutstanding() const {
    const auto isOurs = [](const OnItsWay& event) { return event.mark != OwnMark{}; };
    return !expected_.empty() || std::ranges::any_of(onTheirWay_, isOurs);
  }

  /// Forgets the events that others made.
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
