#pragma once

#include <cstdint>
#include <deque>

namespace keyvora::x11 {

/// What an event that this program injected carries, and the server does not; all zero for others' events.
struct OwnMark {
  std::int64_t userData = 0;
  std::uint64_t flags = 0;

  friend bool operator==(const OwnMark&, const OwnMark&) = default;
};

/// Tells the key events that this connection injected from those that others did. XTEST has one keyboard
/// device for all clients, so the device alone does not say. What says it is the serial number: an event that
/// the server makes while it carries out our request bears that request's number. Such an event first appears
/// as a raw event of the device, at once, and again as one of the master keyboard, in the same order but
/// later, when the keyboard was held back in between.
class OwnEvents {
 public:
  /// The next request, of this serial number, injects a key event with this mark.
  void expect(unsigned long serial, OwnMark mark) { expected_.push_back({serial, mark}); }

  /// A raw event of XTEST's keyboard device.
  void onDevice(unsigned long serial) {
    // A request for a key that is down already makes no event.
    while (!expected_.empty() && expected_.front().serial < serial) expected_.pop_front();
    OwnMark mark;
    if (!expected_.empty() && expected_.front().serial == serial) {
      mark = expected_.front().mark;
      expected_.pop_front();  // of several events with one number only the first was made by the request
    }
    onTheirWay_.push_back(mark);
  }

  /// A raw event of the master keyboard that comes from XTEST's device.
  OwnMark onMaster() {
    if (onTheirWay_.empty()) return {};
    const auto mark = onTheirWay_.front();
    onTheirWay_.pop_front();
    return mark;
  }

 private:
  struct Expected {
    unsigned long serial;
    OwnMark mark;
  };

  std::deque<Expected> expected_;
  std::deque<OwnMark> onTheirWay_;
};

}  // namespace keyvora::x11
